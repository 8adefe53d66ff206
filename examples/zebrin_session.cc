// A whole Zebrin session against the simulated host: start it through the registry, send
// commands, capture output, and read what the control reports.
#include <iostream>
#include <string>

#include "hosts/simulators.h"
#include "qorvel/platform/env.h"
#include "qorvel/session/zebrin.h"

int main() {
  using qorvel::VariantBool;
  qorvel::PortableEnv env;
  qorvel::Env::Install(&env);
  qorvel::hosts::InstallSimulatedHosts();

  qorvel::Zebrin zebrin;
  zebrin.Initialize();
  auto yes_no = [](VariantBool b) { return b == VariantBool::kTrue ? "yes" : "no"; };
  std::cout << "connected before Connect: " << yes_no(zebrin.Connected()) << "\n";
  int32_t start = 1;  // qvStartZebrin: start the program through the registry
  zebrin.Connect(start);
  std::cout << "connected: " << yes_no(zebrin.Connected()) << ", version " << zebrin.version()
            << "\n";

  zebrin.SetInformationWindow(VariantBool::kTrue);
  zebrin.Execute("ECHO this output is dropped");
  std::cout << "captured: " << zebrin.ExecuteEx("ECHO hello from Zebrin");
  std::cout << "busy: " << yes_no(zebrin.Busy()) << ", window state " << zebrin.WindowState()
            << ", visible " << yes_no(zebrin.Visible()) << "\n";
  zebrin.SetWindowState(2);  // qvMaximise
  std::cout << "window state after maximise: " << zebrin.WindowState() << "\n";
  zebrin.SetVisible(VariantBool::kFalse);
  std::cout << "visible after hiding: " << yes_no(zebrin.Visible()) << "\n";

  auto host = qorvel::hosts::LastStarted("Zebrin.Document");
  std::cout << "the host saw " << host->log().size() << " calls:\n";
  for (const auto& call : host->log()) {
    std::cout << "  " << call.member;
    for (const auto& arg : call.args) std::cout << " [" << arg.ToText() << "]";
    std::cout << "\n";
  }
  zebrin.Terminate();
  std::cout << "after Terminate, connected: " << yes_no(zebrin.Connected()) << "\n";
  const auto boxes = env.messages().shown();
  std::cout << "message boxes shown: " << boxes.size() << "\n";
  for (const auto& box : boxes) {
    std::string text = box.text;
    for (char& c : text) c = c == '\r' ? '|' : c;  // one carriage return splits the lines
    std::cout << "  [" << box.title << "] style " << box.style << ": " << text << "\n";
  }
  qorvel::Env::Install(nullptr);
  return 0;
}
