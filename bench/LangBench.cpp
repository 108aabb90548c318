#include <string_view>

#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <locale.h>

#include "ZCommons/Lang/ZCLWildcard.h"

namespace {

// Names as a folder holds them, with wildcards that hit, miss at the end, and have to try again.
struct Case {
  const char* wildcard;
  const char* text;
};
constexpr Case cases[] = {
    {"*", "remove_cert 2024-03-09 14-05-07-678.log"},
    {"*.log", "remove_cert 2024-03-09 14-05-07-678.log"},
    {"*.txt", "remove_cert 2024-03-09 14-05-07-678.log"},
    {"cert_????.pem", "cert_0a4f.pem"},
    {"*a*a*a*b", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"},
    {"\u00FCb*r.?", "\u00FCbungen \u00FCber.c"},
};

void wildcard(benchmark::State& state) {
  const Case& row = cases[state.range(0)];
  const auto wildcard = ZCLWildcard::wildcard(row.wildcard);
  const std::string_view text = row.text;
  for (auto _ : state) benchmark::DoNotOptimize(wildcard->matchWildcard(text));
  state.SetLabel(row.wildcard);
}
BENCHMARK(wildcard)->DenseRange(0, std::size(cases) - 1);

void match(benchmark::State& state) {
  const Case& row = cases[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(fnmatch(row.wildcard, row.text, 0));
  state.SetLabel(row.wildcard);
}

// In the locale that is fastest, for names of ASCII; it counts bytes.
void peerFnmatch(benchmark::State& state) {
  setlocale(LC_ALL, "C");
  match(state);
}
BENCHMARK(peerFnmatch)->DenseRange(0, std::size(cases) - 2);

// In a locale that counts characters, as a wildcard does.
void peerFnmatchUtf8(benchmark::State& state) {
  setlocale(LC_ALL, "C.UTF-8");
  match(state);
  setlocale(LC_ALL, "C");
}
BENCHMARK(peerFnmatchUtf8)->DenseRange(0, std::size(cases) - 1);

}  // namespace
