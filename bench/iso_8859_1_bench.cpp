// Latin-1 to UTF-8, 16 MiB at a time: against a plain loop compiled alike, and against iconv.
#include <iconv.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "iso_8859_1.h"
#include "ratio.h"

namespace {

constexpr size_t kSize = size_t{16} << 20;

// What one would write first.
__attribute__((noinline)) uint32_t PlainLoop(unsigned char* to, const unsigned char* from, uint32_t size) {
  uint32_t count = 0;
  for (; *from != 0; ++from) {
    if (*from >= 0x80) {
      if (size <= count + 1) return count;
      to[count] = static_cast<unsigned char>((*from >> 6) | 0xC0);
      to[count + 1] = static_cast<unsigned char>((*from & 0x3F) | 0x80);
      count += 2;
    } else {
      if (count >= size) return count;
      to[count++] = *from;
    }
  }
  if (size > count) to[count] = 0;
  return count;
}

size_t WithIconv(std::vector<unsigned char>& to, const std::string& from) {
  static const iconv_t converter = iconv_open("UTF-8", "ISO-8859-1");
  char* in = const_cast<char*>(from.data());
  size_t inLeft = from.size();
  char* out = reinterpret_cast<char*>(to.data());
  size_t outLeft = to.size();
  iconv(converter, &in, &inLeft, &out, &outLeft);
  return to.size() - outLeft;
}

bool Measure(const char* name, const std::string& text, double loopLimit) {
  std::vector<unsigned char> ours(2 * kSize + 1);
  std::vector<unsigned char> theirs(2 * kSize + 1);
  const auto* source = reinterpret_cast<const unsigned char*>(text.c_str());
  const auto room = static_cast<uint32_t>(2 * kSize);
  uint32_t count = 0;
  uint32_t loopCount = 0;
  size_t iconvCount = 0;
  const bench::Pair loop = bench::Best(
      9, [&] { count = iso_8859_1s_to_utf8s(ours.data(), source, room, false); },
      [&] { loopCount = PlainLoop(theirs.data(), source, room); });
  const bool same = count == loopCount && std::memcmp(ours.data(), theirs.data(), count) == 0;
  const bench::Pair iconvPair = bench::Best(
      9, [&] { iso_8859_1s_to_utf8s(ours.data(), source, room, false); },
      [&] { iconvCount = WithIconv(theirs, text); });
  if (!same || iconvCount != count || std::memcmp(ours.data(), theirs.data(), count) != 0) {
    std::printf("%s: the outputs differ\n", name);
    return false;
  }
  std::printf("%s: %.1f ms\n", name, loop.ours * 1000);
  const bool keepsLoop = bench::Report("  time against a plain loop", loop.Ratio(), loopLimit);
  return bench::Report("  time against iconv", iconvPair.Ratio(), 0.5) && keepsLoop;
}

std::string Text(double highShare) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> share(0, 1);
  std::string text(kSize, '\0');
  for (char& c : text)
    c = static_cast<char>(share(random) < highShare ? 0x80 + random() % 128 : 1 + random() % 127);
  return text;
}

}  // namespace

int main() {
  bool kept = Measure("all ASCII", Text(0), 1 / 1.5);
  kept = Measure("mixed, one in ten high", Text(0.1), 1) && kept;
  kept = Measure("mixed, half high", Text(0.5), 1) && kept;
  kept = Measure("all high", Text(1), 1) && kept;
  return kept ? 0 : 1;
}
