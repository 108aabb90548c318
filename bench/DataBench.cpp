#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <zlib.h>

#include "ZCommons/IO/NSDataUtils.h"
#include "ZCommons/IO/ZCIOGzipStream.h"

namespace {

using foundation::Data;
using foundation::DataView;

constexpr std::size_t step = 16384;

// Words out of a vocabulary, which gzip takes to about a third.
const Data& text() {
  static const Data bytes = [] {
    std::mt19937 random(1);
    std::vector<std::string> words(2000);
    for (std::string& word : words) {
      for (unsigned i = 0; i < 2 + random() % 8; ++i) {
        word += static_cast<char>('a' + random() % 26);
      }
    }
    std::string content;
    while (content.size() < std::size_t{8} << 20) content += words[random() % words.size()] + ' ';
    const DataView view = foundation::dataOf(content);
    return Data(view.begin(), view.end());
  }();
  return bytes;
}

const Data& compressed() {
  static const Data bytes = *NSDataUtils::compressGzip(text());
  return bytes;
}

/// Gives out bytes in memory.
struct Source : ZCIOStreamDelegate {
  explicit Source(DataView bytes) : rest(bytes) {}
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength, ZCIOStream&) override {
    const std::size_t count = std::min(maxLength, rest.size());
    std::memcpy(buffer, rest.data(), count);
    rest = rest.subspan(count);
    return static_cast<std::int64_t>(count);
  }
  DataView rest;
};

void setThroughput(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void gzipStream(benchmark::State& state) {
  Data buffer(static_cast<std::size_t>(state.range(0)));
  compressed();
  for (auto _ : state) {
    const auto source = std::make_shared<Source>(compressed());
    ZCIOGzipStream stream(source);
    std::size_t total = 0;
    while (const std::int64_t count = stream.read(buffer.data(), buffer.size())) {
      total += static_cast<std::size_t>(count);
      benchmark::ClobberMemory();
    }
    if (total != text().size()) state.SkipWithError("not all was read");
  }
  setThroughput(state, text().size());
}

// Plain zlib, which reads and gives out the same steps.
void gzipStreamByZlib(benchmark::State& state) {
  Data input(step);
  Data buffer(static_cast<std::size_t>(state.range(0)));
  compressed();
  for (auto _ : state) {
    const auto source = std::make_shared<Source>(compressed());
    ZCIOStream stream(source);
    z_stream inflating{};
    inflateInit2(&inflating, 47);
    int result = Z_OK;
    inflating.avail_out = 1;
    while (result == Z_OK) {
      if (inflating.avail_in == 0 && inflating.avail_out > 0) {
        inflating.next_in = input.data();
        inflating.avail_in = static_cast<uInt>(stream.read(input.data(), input.size()));
      }
      inflating.next_out = buffer.data();
      inflating.avail_out = static_cast<uInt>(buffer.size());
      result = inflate(&inflating, Z_SYNC_FLUSH);
      benchmark::ClobberMemory();
    }
    if (inflating.total_out != text().size()) state.SkipWithError("not all was read");
    inflateEnd(&inflating);
  }
  setThroughput(state, text().size());
}

BENCHMARK(gzipStream)->Arg(step)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(gzipStreamByZlib)->Arg(step)->Arg(4096)->Unit(benchmark::kMillisecond);

void uncompress(benchmark::State& state) {
  compressed();
  for (auto _ : state) benchmark::DoNotOptimize(NSDataUtils::uncompressGzip(compressed()));
  setThroughput(state, text().size());
}
BENCHMARK(uncompress)->Unit(benchmark::kMillisecond);

void uncompressByZlib(benchmark::State& state) {
  compressed();
  for (auto _ : state) {
    Data output(text().size());
    z_stream inflating{};
    inflateInit2(&inflating, 47);
    inflating.next_in = const_cast<Bytef*>(compressed().data());
    inflating.avail_in = static_cast<uInt>(compressed().size());
    inflating.next_out = output.data();
    inflating.avail_out = static_cast<uInt>(output.size());
    if (inflate(&inflating, Z_FINISH) != Z_STREAM_END) state.SkipWithError("not all was read");
    inflateEnd(&inflating);
    benchmark::DoNotOptimize(output);
  }
  setThroughput(state, text().size());
}
BENCHMARK(uncompressByZlib)->Unit(benchmark::kMillisecond);

const DataView compressible() { return DataView(text()).first(std::size_t{1} << 20); }

void compress(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(NSDataUtils::compressGzip(compressible()));
  setThroughput(state, compressible().size());
}
BENCHMARK(compress)->Unit(benchmark::kMillisecond);

void compressByZlib(benchmark::State& state) {
  for (auto _ : state) {
    z_stream deflating{};
    deflateInit2(&deflating, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY);
    Data output(deflateBound(&deflating, compressible().size()));
    deflating.next_in = const_cast<Bytef*>(compressible().data());
    deflating.avail_in = static_cast<uInt>(compressible().size());
    deflating.next_out = output.data();
    deflating.avail_out = static_cast<uInt>(output.size());
    if (deflate(&deflating, Z_FINISH) != Z_STREAM_END) state.SkipWithError("not all was written");
    deflateEnd(&deflating);
    benchmark::DoNotOptimize(output);
  }
  setThroughput(state, compressible().size());
}
BENCHMARK(compressByZlib)->Unit(benchmark::kMillisecond);

DataView sample(const benchmark::State& state) {
  return DataView(compressed()).first(static_cast<std::size_t>(state.range(0)));
}

void base64Encode(benchmark::State& state) {
  const DataView data = sample(state);
  for (auto _ : state) benchmark::DoNotOptimize(NSDataUtils::base64Encoded(data));
  setThroughput(state, data.size());
}
BENCHMARK(base64Encode)->Arg(48)->Arg(3 << 10)->Arg(3 << 18);

void base64EncodeByOpenSSL(benchmark::State& state) {
  const DataView data = sample(state);
  Data output(data.size() / 3 * 4 + 5);
  for (auto _ : state) {
    EVP_EncodeBlock(output.data(), data.data(), static_cast<int>(data.size()));
    benchmark::ClobberMemory();
  }
  setThroughput(state, data.size());
}
BENCHMARK(base64EncodeByOpenSSL)->Arg(48)->Arg(3 << 10)->Arg(3 << 18);

void base64Decode(benchmark::State& state) {
  const std::string encoded = NSDataUtils::base64Encoded(sample(state));
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSDataUtils::base64Decoded(foundation::dataOf(encoded)));
  }
  setThroughput(state, sample(state).size());
}
BENCHMARK(base64Decode)->Arg(48)->Arg(3 << 10)->Arg(3 << 18);

void base64DecodeByOpenSSL(benchmark::State& state) {
  const std::string encoded = NSDataUtils::base64Encoded(sample(state));
  Data output(encoded.size());
  for (auto _ : state) {
    EVP_DecodeBlock(output.data(), foundation::dataOf(encoded).data(),
                    static_cast<int>(encoded.size()));
    benchmark::ClobberMemory();
  }
  setThroughput(state, sample(state).size());
}
BENCHMARK(base64DecodeByOpenSSL)->Arg(48)->Arg(3 << 10)->Arg(3 << 18);

constexpr std::size_t digested = 64;

void sha256(benchmark::State& state) {
  const DataView data = DataView(text()).first(digested);
  for (auto _ : state) benchmark::DoNotOptimize(NSDataUtils::sha256Digest(data));
}
BENCHMARK(sha256);

void md5(benchmark::State& state) {
  const DataView data = DataView(text()).first(digested);
  for (auto _ : state) benchmark::DoNotOptimize(NSDataUtils::md5Digest(data));
}
BENCHMARK(md5);

void digestByOpenSSL(benchmark::State& state, const char* name) {
  EVP_MD* const algorithm = EVP_MD_fetch(nullptr, name, nullptr);
  unsigned char digest[EVP_MAX_MD_SIZE];
  for (auto _ : state) {
    EVP_Digest(text().data(), digested, digest, nullptr, algorithm, nullptr);
    benchmark::ClobberMemory();
  }
  EVP_MD_free(algorithm);
}
BENCHMARK_CAPTURE(digestByOpenSSL, sha256, "SHA256");
BENCHMARK_CAPTURE(digestByOpenSSL, md5, "MD5");

// One context for all digests.
void digestByOneContext(benchmark::State& state, const char* name) {
  EVP_MD* const algorithm = EVP_MD_fetch(nullptr, name, nullptr);
  EVP_MD_CTX* const context = EVP_MD_CTX_new();
  unsigned char digest[EVP_MAX_MD_SIZE];
  for (auto _ : state) {
    EVP_DigestInit_ex2(context, algorithm, nullptr);
    EVP_DigestUpdate(context, text().data(), digested);
    EVP_DigestFinal_ex(context, digest, nullptr);
    benchmark::ClobberMemory();
  }
  EVP_MD_CTX_free(context);
  EVP_MD_free(algorithm);
}
BENCHMARK_CAPTURE(digestByOneContext, sha256, "SHA256");
BENCHMARK_CAPTURE(digestByOneContext, md5, "MD5");

}  // namespace
