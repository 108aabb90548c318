#include <time.h>

#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#ifdef ZARVO_HAVE_FMT
#include <fmt/args.h>
#include <fmt/format.h>
#endif

#include "ZCommons/Network/ZCNUserAgent.h"
#include "ZCommons/Text/NSDateUtils.h"
#include "ZCommons/Text/ZCStringTemplate.h"

namespace {

constexpr const char* page =
    "<html><head><title>${title}</title></head><body><h1>${title}</h1><p>The page ${url} was "
    "blocked by ${filter} at ${time}.</p></body></html>";

void fillTemplate(benchmark::State& state) {
  const auto text = ZCStringTemplate::initWithString(page);
  const ZCStringTemplate::Strings values = {{"title", "Blocked"},
                                            {"url", "https://example.com/index.html"},
                                            {"filter", "Tracking protection"},
                                            {"time", "2024-03-09 14:05:07"}};
  for (auto _ : state) benchmark::DoNotOptimize(text->stringFromTemplateWithParameters(values));
}
BENCHMARK(fillTemplate);

// The dictionary made anew each time, as the peer's arguments are.
void fillTemplateWithNewDictionary(benchmark::State& state) {
  const auto text = ZCStringTemplate::initWithString(page);
  for (auto _ : state) {
    const std::map<std::string_view, std::string_view> values = {
        {"title", "Blocked"},
        {"url", "https://example.com/index.html"},
        {"filter", "Tracking protection"},
        {"time", "2024-03-09 14:05:07"}};
    benchmark::DoNotOptimize(text->stringFromTemplateWithParameters(values));
  }
}
BENCHMARK(fillTemplateWithNewDictionary);

#ifdef ZARVO_HAVE_FMT
void peerFmtNamedArguments(benchmark::State& state) {
  constexpr fmt::string_view format =
      "<html><head><title>{title}</title></head><body><h1>{title}</h1><p>The page {url} was "
      "blocked by {filter} at {time}.</p></body></html>";
  for (auto _ : state) {
    benchmark::DoNotOptimize(fmt::vformat(
        format, fmt::make_format_args(fmt::arg("title", "Blocked"),
                                      fmt::arg("url", "https://example.com/index.html"),
                                      fmt::arg("filter", "Tracking protection"),
                                      fmt::arg("time", "2024-03-09 14:05:07"))));
  }
}
BENCHMARK(peerFmtNamedArguments);
#endif

const foundation::Date moment = foundation::Date(std::chrono::seconds(784111777));

void formatHttpDate(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(NSDateUtils::formatHttpDate(moment));
}
BENCHMARK(formatHttpDate);

void formatISO8601(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(NSDateUtils::iso8601String(moment));
}
BENCHMARK(formatISO8601);

void formatByStrftime(benchmark::State& state, const char* format) {
  const time_t time = 784111777;
  for (auto _ : state) {
    struct tm fields;
    char text[64];
    const std::size_t length = strftime(text, sizeof(text), format, gmtime_r(&time, &fields));
    benchmark::DoNotOptimize(std::string(text, length));
  }
}
BENCHMARK_CAPTURE(formatByStrftime, peerHttp, "%a, %d %b %Y %H:%M:%S GMT");
BENCHMARK_CAPTURE(formatByStrftime, peerISO8601, "%Y-%m-%dT%H:%M:%S.000+00:00");

struct DateForm {
  const char* text;
  const char* strptimeFormat;
  std::optional<foundation::Date> (*parse)(foundation::NullableText);
};
constexpr DateForm dateForms[] = {
    {"Sun, 06 Nov 1994 08:49:37 GMT", "%a, %d %b %Y %H:%M:%S GMT",
     NSDateUtils::parseHttpDateFromString},
    {"Sunday, 06-Nov-94 08:49:37 GMT", "%a, %d-%b-%y %H:%M:%S GMT",
     NSDateUtils::parseHttpDateFromString},
    {"Sun Nov  6 08:49:37 1994", "%a %b %d %H:%M:%S %Y", NSDateUtils::parseHttpDateFromString},
    {"1994-11-06T08:49:37.000+01:00", "%Y-%m-%dT%H:%M:%S.000%z",
     NSDateUtils::dateWithISO8601String},
    {"1994-11-06 08:49:37", "%Y-%m-%d %H:%M:%S", NSDateUtils::dateWithSQliteString},
};

void parseDate(benchmark::State& state) {
  const DateForm& form = dateForms[state.range(0)];
  const std::string_view text = form.text;
  for (auto _ : state) benchmark::DoNotOptimize(form.parse(text));
  state.SetLabel(form.text);
}
BENCHMARK(parseDate)->DenseRange(0, std::size(dateForms) - 1);

void peerStrptime(benchmark::State& state) {
  const DateForm& form = dateForms[state.range(0)];
  for (auto _ : state) {
    struct tm fields {};
    if (!strptime(form.text, form.strptimeFormat, &fields)) state.SkipWithError("not read");
    const long offset = fields.tm_gmtoff;
    benchmark::DoNotOptimize(timegm(&fields) - offset);
  }
  state.SetLabel(form.text);
}
BENCHMARK(peerStrptime)->DenseRange(0, std::size(dateForms) - 1);

constexpr std::string_view agents[] = {
    "Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like Gecko) "
    "Chrome/71.0.3578.98 Safari/537.36",
    "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_14) AppleWebKit/605.1.15 (KHTML, like Gecko) "
    "Version/12.0.2 Safari/605.1.15",
    "curl/7.64.0",
};

void detectBrowser(benchmark::State& state) {
  const std::string_view agent = agents[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(ZCNUserAgent(agent));
}
BENCHMARK(detectBrowser)->DenseRange(0, std::size(agents) - 1);

// The same, the version by the browser's expression.
void peerExpression(benchmark::State& state) {
  const std::string_view agent = agents[state.range(0)];
  for (auto _ : state) {
    const ZCNBrowser& browser = ZCNBrowser::detectBrowser(agent);
    benchmark::DoNotOptimize(browser.versionRegex()->firstMatchInString(agent));
  }
}
BENCHMARK(peerExpression)->DenseRange(0, std::size(agents) - 1);

void detectBrowserInHostileValue(benchmark::State& state) {
  std::string agent;
  while (agent.size() < static_cast<std::size_t>(state.range(0)))
    agent += "Version/x compatible; MSIE 1";
  for (auto _ : state) benchmark::DoNotOptimize(ZCNUserAgent(agent));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(detectBrowserInHostileValue)->Range(1 << 12, 1 << 20)->Complexity(benchmark::oN);

}  // namespace
