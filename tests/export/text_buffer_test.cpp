#include "export/text.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace facet {
namespace {

std::string formatted(float value) {
  std::array<char, maxFloatText> text;
  return {text.data(), formatFloat(text.data(), value)};
}

std::string printed(float value) {
  std::array<char, 64> text;
  return {text.data(), static_cast<size_t>(std::snprintf(text.data(), text.size(), "%f", value))};
}

TEST(FormatFloat, EqualsPrintfOnRandomBits) {
  std::mt19937 random(1);
  for (int i = 0; i < 400'000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<uint32_t>(random()));
    ASSERT_EQ(formatted(value), printed(value)) << std::hex << std::bit_cast<uint32_t>(value);
  }
}

TEST(FormatFloat, EqualsPrintfOnModelValues) {
  std::mt19937 random(2);
  for (const float range : {0.00001F, 1.0F, 99.0F, 20'000.0F, 1e7F}) {
    std::uniform_real_distribution<float> values(-range, range);
    for (int i = 0; i < 60'000; ++i) {
      const float value = values(random);
      ASSERT_EQ(formatted(value), printed(value)) << std::hexfloat << value;
    }
  }
}

TEST(FormatFloat, EqualsPrintfAtTheEdges) {
  std::vector<float> edges{0.0F, FLT_MIN, FLT_TRUE_MIN, FLT_MAX, INFINITY, NAN, 0.5F / 1e6F, 1.5F / 1e6F};
  for (float power = 1e-8F; power < 1e12F; power *= 10) edges.push_back(power);
  for (int exponent = -30; exponent < 64; ++exponent) edges.push_back(std::ldexp(1.0F, exponent));
  for (const float edge : edges) {
    for (const float value : {edge, std::nextafter(edge, 0.0F), std::nextafter(edge, INFINITY)}) {
      EXPECT_EQ(formatted(value), printed(value));
      EXPECT_EQ(formatted(-value), printed(-value));
    }
  }
}

TEST(FormatFloat, RoundsTiesToEven) {
  // Multiples of 1/128 have a seventh decimal of 5 and nothing behind it.
  for (int i = 0; i < 20'000; ++i) {
    const float tie = static_cast<float>(i) / 128.0F;
    ASSERT_EQ(formatted(tie), printed(tie));
  }
}

TEST(TextBuffer, WritesIntegersOfEveryLength) {
  TextBuffer text;
  std::string expected;
  for (int64_t power = 1; power <= 1'000'000'000'000; power *= 10) {
    for (const int64_t value : {power - 1, power, -power}) {
      text.put(value, ' ');
      expected += std::to_string(value) + ' ';
    }
  }
  text.put(UINT32_MAX, ' ', uint16_t{65535});
  EXPECT_EQ(text.view(), expected + "4294967295 65535");
}

TEST(TextBuffer, PadsWithZerosUpToTheWidthOnly) {
  TextBuffer text;
  text.put(Padded{0, 5}, ' ', Padded{42, 5}, ' ', Padded{12345, 5}, ' ', Padded{1234567, 5}, ' ',
           Padded{7, 3});
  EXPECT_EQ(text.view(), "00000 00042 12345 1234567 007");
}

TEST(TextBuffer, KeepsItsTextWhileItGrows) {
  TextBuffer text;
  std::string expected;
  for (int i = 0; i < 20'000; ++i) {
    text.put("v ", 1.5F, '\n');
    expected += "v 1.500000\n";
  }
  EXPECT_EQ(text.view(), expected);
  text.clear();
  text.put(std::string(100'000, 'x'));
  EXPECT_EQ(text.size(), 100'000U);
}

}  // namespace
}  // namespace facet
