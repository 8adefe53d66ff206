#include "qorvel/server/form.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "hosts/simulators.h"
#include "qorvel/frame/control.h"
#include "qorvel/machining/tarvik3_face.h"
#include "qorvel/platform/env_testing.h"
#include "qorvel/platform/error_testing.h"
#include "qorvel/platform/file_bytes.h"

namespace qorvel {
namespace {

class FormTest : public ::testing::Test {
 protected:
  FormTest() { std::filesystem::create_directories(dir_); }
  ~FormTest() override { std::filesystem::remove_all(dir_); }

  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = dir_ + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static std::string Read(const std::string& path) {
    return ReadFileBytes(path, size_t{1} << 24, "a form file");
  }

  ScopedEnv env_;
  // Tests run as processes of their own, side by side: each has its own folder.
  const std::string dir_ = testing::TempDir() + "form_test_" + std::to_string(getpid());
};

TEST_F(FormTest, AControlOutlivesItsForm) {
  auto form = std::make_unique<Form>(/*user_mode=*/false);
  AutomationObject box = form->Add("ValueBox", "A");
  form.reset();
  SetMember(box, "value", 1.5);
  EXPECT_EQ(GetMember(box, "DecimalPlaces").ToInteger(), 6);  // still in design mode
}

TEST_F(FormTest, OnlyNamesAreTaken) {
  Form form;
  form.Add("ValueBox", "Unit_price1");
  using namespace std::string_literals;
  for (const std::string& name :
       {"Unit price"s, "A\nB"s, ""s, "1A"s, "B\0C"s, "UNIT_PRICE1"s, "Ä"s}) {
    EXPECT_EQ(ErrorOf([&] { form.Add("ValueBox", name); }), 5) << name;
  }
  EXPECT_EQ(form.controls().size(), 1u);
  EXPECT_EQ(form.Find("unit_PRICE1"), form.controls()[0].second);
}

TEST_F(FormTest, NumbersAreSavedWithThePointWhateverTheLocale) {
  Form form(/*user_mode=*/false);
  SetMember(form.Add("ValueBox", "A"), "value", 2.5);
  if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
    GTEST_SKIP() << "no decimal-comma locale here (tools/qv test makes de_DE.UTF-8)";
  }
  const std::string text = form.Text();
  std::setlocale(LC_ALL, "C");
  EXPECT_NE(text.find("Value = Double 2.5\n"), std::string::npos) << text;
}

// A write that stops part way (here at a file-size limit) leaves the old file as it was.
TEST_F(FormTest, AFailedSaveLeavesTheOldFileWhole) {
  Form form(/*user_mode=*/false);
  for (int i = 0; i < 200; ++i) form.Add("ValueBox", "Box" + std::to_string(i));
  const std::string path = Write("old.frm", "QorvelOLE form 1\n");
  rlimit old_limit{};
  getrlimit(RLIMIT_FSIZE, &old_limit);
  const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit small = old_limit;
  small.rlim_cur = 1000;
  setrlimit(RLIMIT_FSIZE, &small);
  const int32_t error = ErrorOf([&] { form.Save(path); });
  setrlimit(RLIMIT_FSIZE, &old_limit);
  std::signal(SIGXFSZ, old_handler);
  EXPECT_EQ(error, 5);
  EXPECT_EQ(Read(path), "QorvelOLE form 1\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), {}), 1);  // no leftovers
  form.Save(path);
  EXPECT_EQ(Read(path), form.Text());
}

// Everything is checked before any control is made: a refused file doesn't even reach the
// Tarvik3 whose Terminate would disconnect the script's own session.
TEST_F(FormTest, ARefusedFileMakesNoControlAndNamesItsLine) {
  auto host = hosts::RunTarvik();
  AutomationObject session = NewControl<Tarvik3>();
  Call(session, "Connect");
  const std::string good = "QorvelOLE form 1\nBegin Tarvik3 T\nEnd\nBegin ValueBox B\n";
  struct Case {
    std::string text;
    int32_t number;
    const char* says;
  };
  const Case cases[] = {
      {good + "  Value = String \"x\"\nEnd\n", 13, "f.frm: line 5: Type mismatch"},
      {good + "  DecimalPlaces = Long 70000\nEnd\n", 6, "f.frm: line 5: Overflow"},
      {good + "  ReadOnly = Null\nEnd\n", 94, "f.frm: line 5: Invalid use of Null"},
      {good + "End\nBegin Gadget G\nEnd\n", 429, "f.frm: line 6: ActiveX component"},
      {good + "End\nBegin PointClass P\nEnd\n", 5, "f.frm: line 6: PointClass is no control"},
      {good + "End\nBegin ValueBox b\nEnd\n", 5, "f.frm: line 6: a second control named b"},
  };
  const int live = LiveObjects();
  for (const Case& c : cases) {
    const std::string path = Write("f.frm", c.text);
    try {
      Form::Load(path);
      ADD_FAILURE() << c.text;
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), c.number) << c.text;
      EXPECT_NE(e.description().find(c.says), std::string::npos) << e.description();
    }
    EXPECT_EQ(LiveObjects(), live) << c.text;
  }
  EXPECT_EQ(GetMember(session, "Connected").ToBool(), VariantBool::kTrue);
  const std::string path = Write("f.frm", good + "  Value = String \"2\"\nEnd\n");
  EXPECT_EQ(GetMember(Form::Load(path)->Find("B"), "value").ToDouble(), 2);
}

}  // namespace
}  // namespace qorvel
