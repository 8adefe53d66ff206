// Number text both ways under several regions. The first byte picks the region, the next eight
// are a Double, the rest is text: read as a number for every target, and used as a picture.
// Properties: a reading is a finite number or none; ParseNumber agrees with ReadNumber; the
// general form of a finite Double reads back to it within the form's 15 significant digits.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/property.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {
namespace {

using fuzz::Expect;

const NumberSymbols kRegions[] = {
    {".", ",", "$"},
    {",", ".", "\xE2\x82\xAC"},                      // euro
    {"\xD9\xAB", "\xD9\xAC", "\xD8\xAF.\xD8\xA5."},  // Arabic decimal and grouping signs, dirham
    {",", "\xC2\xA0", "kr"},                         // no-break space between groups
    {".", "'", "CHF"},
};

// The largest Double whose 15 significant digits stay within range.
constexpr double kLargest15Digits = 1.79769313486231e308;

bool SameDouble(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// 15 significant digits are exact to half a unit of the 15th, 5E-15 of the value; the read
// rounds once more, and below the normal range a Double itself holds fewer digits.
void ExpectReadsBack(double value, const NumberSymbols& symbols) {
  if (!std::isfinite(value)) return;
  const std::string text = FormatGeneral(value, symbols);
  const NumberReading back = ReadNumber(text, NumberTarget::kDouble, symbols);
  // Near the largest Double the 15 digits round past it, and the runtime reads that as an
  // overflow too.
  if (std::fabs(value) > kLargest15Digits) {
    Expect(back.status != NumberStatus::kNoNumber,
           "the general form reads as a number or overflows");
    if (back.status == NumberStatus::kOverflow) return;
  }
  Expect(back.status == NumberStatus::kNumber,
         "the general form of a finite Double reads as a number");
  const double error = std::fabs(back.value - value);
  Expect(error <= std::fabs(value) * 5.2e-15 + std::numeric_limits<double>::denorm_min(),
         "the general form reads back to its value within 15 significant digits");
}

}  // namespace
}  // namespace qorvel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qorvel;
  if (size == 0) return 0;
  const NumberSymbols& symbols = kRegions[data[0] % std::size(kRegions)];
  double value = 0;
  size_t used = 1;
  if (size >= 9) {
    std::memcpy(&value, data + 1, sizeof value);
    used = 9;
  }
  const std::string_view text(reinterpret_cast<const char*>(data) + used, size - used);

  for (NumberTarget target : {NumberTarget::kInteger, NumberTarget::kLong, NumberTarget::kDouble}) {
    const NumberReading reading = ReadNumber(text, target, symbols);
    Expect(reading.status != NumberStatus::kNumber || std::isfinite(reading.value),
           "a number read from text is finite");
  }
  const NumberReading reading = ReadNumber(text, NumberTarget::kDouble, symbols);
  const std::optional<double> parsed = ParseNumber(text, symbols);
  Expect(parsed.has_value() == (reading.status == NumberStatus::kNumber),
         "ParseNumber reads a number exactly where ReadNumber does");
  Expect(!parsed || SameDouble(*parsed, reading.value), "ParseNumber gives ReadNumber's value");
  Expect(std::isfinite(ReadNumberPrefix(text)), "a number prefix is finite");

  ExpectReadsBack(value, symbols);
  if (parsed) ExpectReadsBack(*parsed, symbols);
  FormatPattern(value, text, symbols);
  if (parsed) FormatPattern(*parsed, text, symbols);
  return 0;
}
