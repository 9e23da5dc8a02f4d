#include "qilsys/TMath.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <system_error>

namespace {

constexpr std::array PowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The double that is nearest to the power. Not every runtime's `pow` gives it: off by its last bit, 0.01 makes 1200 of
// 1234 by way of 1199.9999999999998.
double NearestPower(short exponent) {
  std::array<char, 8> text = {'1', 'e'};
  char* const end = std::to_chars(text.data() + 2, text.data() + text.size(), exponent).ptr;
  double power = 0;
  const auto read = std::from_chars(text.data(), end, power);
  if (read.ec == std::errc()) return power;
  return exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

double PowerOfTen(short exponent) {
  const bool isUsual = 0 <= exponent && exponent < static_cast<int>(PowersOfTen.size());
  return isUsual ? PowersOfTen[static_cast<std::size_t>(exponent)] : NearestPower(exponent);
}

}  // namespace

double TMath::DegreesToRadians(double degrees) { return degrees * std::numbers::pi / 180.0; }

double TMath::RadiansToDegrees(double radians) { return radians * 180.0 / std::numbers::pi; }

int TMath::MulDiv(int a, int b, int c) {
  if (c == 0) {
    return -1;
  }
  const std::int64_t quotient = (std::int64_t{a} * b + c / 2) / c;
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<std::int64_t>(quotient, Limits::min(), Limits::max()));
}

double TMath::round2(double value, short digits) {
  const double scale = PowerOfTen(digits);
  const double scaled = value * scale;
  const double rounded = scaled >= 0 ? std::floor(scaled + 0.5) : std::ceil(scaled - 0.5);
  const double result = rounded / scale;
  return result == 0.0 ? 0.0 : result;
}

bool TMath::identical(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

bool TMath::identical(const std::vector<double>& a, const std::vector<double>& b) {
  return std::ranges::equal(a, b, [](double x, double y) { return identical(x, y); });
}

bool TMath::identical(const std::vector<std::vector<double>>& a, const std::vector<std::vector<double>>& b) {
  return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return identical(x, y); });
}
