#include "ZCommons/IO/NSDataUtils.h"

#include "ZCommons/IO/ZCIODigest.h"

std::array<std::uint8_t, 16> NSDataUtils::md5Digest(foundation::DataView data) {
  std::array<std::uint8_t, 16> digest;
  ZCIODigest::compute(ZCIODigest::Algorithm::MD5, data, digest);
  return digest;
}

std::array<std::uint8_t, 32> NSDataUtils::sha256Digest(foundation::DataView data) {
  std::array<std::uint8_t, 32> digest;
  ZCIODigest::compute(ZCIODigest::Algorithm::SHA256, data, digest);
  return digest;
}
