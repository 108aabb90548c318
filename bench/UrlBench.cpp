#include <string>
#include <string_view>

#include <benchmark/benchmark.h>

#include "ZCommons/Network/ZCNHostPatterns.h"
#include "ZCommons/Network/ZCNReservedDomains.h"
#include "ZCommons/Network/ZCNUrlUtils.h"
#include "foundation/RegularExpression.h"
#include "foundation/URIReference.h"
#include "platform/FileSystem.h"

#ifdef ZARVO_HAVE_BOOST_URL
#include <boost/url/parse.hpp>
#endif
#ifdef ZARVO_HAVE_URIPARSER
#include <uriparser/Uri.h>
#endif

using foundation::RegularExpression;

namespace {

const char* const urls[] = {
    "http://example.com/",
    "https://www.a-longer-host.example.co.uk:8443/path/to/page.html?query=value&other=1#fragment",
};

// The host as a text of its own, as all of them have to give it.
void hostOfUrl(benchmark::State& state) {
  const std::string_view url = urls[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(ZCNUrlUtils::host(url));
}
BENCHMARK(hostOfUrl)->DenseRange(0, std::size(urls) - 1);

void hostOfCheckedUrl(benchmark::State& state) {
  const std::string_view url = urls[state.range(0)];
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::string(*foundation::URIReference::parse(url)->host()));
  }
}
BENCHMARK(hostOfCheckedUrl)->DenseRange(0, std::size(urls) - 1);

#ifdef ZARVO_HAVE_BOOST_URL
void peerHostBoost(benchmark::State& state) {
  const std::string_view url = urls[state.range(0)];
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::string(boost::urls::parse_uri_reference(url)->encoded_host()));
  }
}
BENCHMARK(peerHostBoost)->DenseRange(0, std::size(urls) - 1);
#endif

#ifdef ZARVO_HAVE_URIPARSER
void peerHostUriparser(benchmark::State& state) {
  const std::string_view url = urls[state.range(0)];
  for (auto _ : state) {
    UriUriA uri;
    const char* error = nullptr;
    if (uriParseSingleUriExA(&uri, url.data(), url.data() + url.size(), &error) != URI_SUCCESS) {
      return state.SkipWithError("uriparser refuses");
    }
    benchmark::DoNotOptimize(std::string(uri.hostText.first, uri.hostText.afterLast));
    uriFreeUriMembersA(&uri);
  }
}
BENCHMARK(peerHostUriparser)->DenseRange(0, std::size(urls) - 1);
#endif

struct Form {
  std::string_view pattern;
  bool (*matches)(std::string_view);
  std::string_view text;
};
const Form forms[] = {
    {ZCNHostPatterns::domainName, ZCNHostPatterns::matchesDomainName, "www.a-longer-host.co.uk"},
    {ZCNHostPatterns::IPv4, ZCNHostPatterns::matchesIPv4, "192.168.100.254"},
    {ZCNHostPatterns::IPv6, ZCNHostPatterns::matchesIPv6, "2001:db8::8a2e:370:7334"},
};

void matchHost(benchmark::State& state) {
  const Form& form = forms[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(form.matches(form.text));
}
BENCHMARK(matchHost)->DenseRange(0, std::size(forms) - 1);

void peerMatchHostICU(benchmark::State& state) {
  const Form& form = forms[state.range(0)];
  const auto expression = RegularExpression::regularExpressionWithPattern(
      form.pattern, RegularExpression::caseInsensitive);
  for (auto _ : state) benchmark::DoNotOptimize(expression->matches(form.text));
}
BENCHMARK(peerMatchHostICU)->DenseRange(0, std::size(forms) - 1);

// At most 200 ns each.
void registrableDomain(benchmark::State& state) {
  const char* const hosts[] = {"www.example.com", "a.b.example.co.uk", "a.b.k12.ca.us",
                               "a.b.c.example.xn--55qx5d.cn"};
  const std::string_view host = hosts[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(ZCNUrlUtils::secondLevelDomainName(host));
}
BENCHMARK(registrableDomain)->DenseRange(0, 3);

// At most 10 ms.
void loadReservedDomains(benchmark::State& state) {
  for (auto _ : state) {
    const auto data = platform::FileSystem::readFile(ZARVO_RESERVED_DOMAINS);
    if (!data || !ZCNReservedDomains::listsFromData(*data)) {
      return state.SkipWithError("no lists");
    }
  }
}
BENCHMARK(loadReservedDomains)->Unit(benchmark::kMillisecond);

}  // namespace
