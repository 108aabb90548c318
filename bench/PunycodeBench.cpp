#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <unicode/bytestream.h>
#include <unicode/idna.h>

#include "ZCommons/Network/NSStringPunycodeAdditions.h"

#ifdef ZARVO_HAVE_LIBIDN
#include <idn-free.h>
#include <punycode.h>
#include <stringprep.h>
#endif

using namespace NSStringPunycodeAdditions;

namespace {

constexpr std::string_view labels[] = {
    "b\u00FCcher",
    "\u043F\u0440\u0438\u043C\u0435\u0440",
    "\u4ED6\u4EEC\u4E3A\u4EC0\u4E48\u4E0D\u8BF4\u4E2D\u6587",
    "donaudampfschifffahrtsgesellschaftskapit\u00E4nsm\u00FCtze",
    "\u043F\u043E\u0447\u0435\u043C\u0443\u0436\u0435\u043E\u043D\u0438\u043D\u0435\u0433\u043E"
    "\u0432\u043E\u0440\u044F\u0442\u043F\u043E\u0440\u0443\u0441\u0441\u043A\u0438",
};

// International, mixed, and plain.
constexpr std::string_view hosts[] = {
    "www.b\u00FCcher.example",
    "\u043F\u0440\u0438\u043C\u0435\u0440.\u0438\u0441\u043F\u044B\u0442\u0430\u043D\u0438\u0435",
    "\u4ED6\u4EEC\u4E3A\u4EC0\u4E48\u4E0D\u8BF4\u4E2D\u6587.example",
    "www.example.com",
    "static.content.cdn.images.example.co.uk",
};

void encodeLabel(benchmark::State& state) {
  const std::string_view label = labels[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(punycodeEncodedString(label));
}
BENCHMARK(encodeLabel)->DenseRange(0, std::size(labels) - 1);

void decodeLabel(benchmark::State& state) {
  const std::string punycode = *punycodeEncodedString(labels[state.range(0)]);
  for (auto _ : state) benchmark::DoNotOptimize(punycodeDecodedString(punycode));
}
BENCHMARK(decodeLabel)->DenseRange(0, std::size(labels) - 1);

#ifdef ZARVO_HAVE_LIBIDN
// The peer's functions, which read and write arrays of code points: spared UTF-8 and allocations.
void peerBareEncodeLabel(benchmark::State& state) {
  const std::u32string characters = longCharactersWithCount(labels[state.range(0)]);
  const std::vector<punycode_uint> label(characters.begin(), characters.end());
  for (auto _ : state) {
    std::array<char, 256> output;
    std::size_t length = output.size();
    punycode_encode(label.size(), label.data(), nullptr, &length, output.data());
    benchmark::DoNotOptimize(output);
  }
}
BENCHMARK(peerBareEncodeLabel)->DenseRange(0, std::size(labels) - 1);

void peerBareDecodeLabel(benchmark::State& state) {
  const std::string punycode = *punycodeEncodedString(labels[state.range(0)]);
  for (auto _ : state) {
    std::array<punycode_uint, 256> output;
    std::size_t length = output.size();
    punycode_decode(punycode.size(), punycode.data(), &length, output.data(), nullptr);
    benchmark::DoNotOptimize(output);
  }
}
BENCHMARK(peerBareDecodeLabel)->DenseRange(0, std::size(labels) - 1);

// The same between UTF-8 texts, as we do it.
void peerEncodeLabel(benchmark::State& state) {
  const std::string_view label = labels[state.range(0)];
  for (auto _ : state) {
    std::size_t count;
    std::uint32_t* const characters =
        stringprep_utf8_to_ucs4(label.data(), static_cast<ssize_t>(label.size()), &count);
    std::array<char, 256> output;
    std::size_t length = output.size();
    punycode_encode(count, characters, nullptr, &length, output.data());
    benchmark::DoNotOptimize(std::string(output.data(), length));
    idn_free(characters);
  }
}
BENCHMARK(peerEncodeLabel)->DenseRange(0, std::size(labels) - 1);

void peerDecodeLabel(benchmark::State& state) {
  const std::string punycode = *punycodeEncodedString(labels[state.range(0)]);
  for (auto _ : state) {
    std::array<punycode_uint, 256> output;
    std::size_t length = output.size();
    punycode_decode(punycode.size(), punycode.data(), &length, output.data(), nullptr);
    char* const text =
        stringprep_ucs4_to_utf8(output.data(), static_cast<ssize_t>(length), nullptr, nullptr);
    benchmark::DoNotOptimize(std::string(text));
    idn_free(text);
  }
}
BENCHMARK(peerDecodeLabel)->DenseRange(0, std::size(labels) - 1);
#endif

void hostToASCII(benchmark::State& state) {
  const std::string_view host = hosts[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(IDNAEncodedString(host));
}
BENCHMARK(hostToASCII)->DenseRange(0, std::size(hosts) - 1);

void peerICUHostToASCII(benchmark::State& state) {
  const std::string_view host = hosts[state.range(0)];
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::IDNA> idna(icu::IDNA::createUTS46Instance(0, status));
  for (auto _ : state) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    icu::IDNAInfo info;
    idna->nameToASCII_UTF8(host, sink, info, status);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(peerICUHostToASCII)->DenseRange(0, std::size(hosts) - 1);

}  // namespace
