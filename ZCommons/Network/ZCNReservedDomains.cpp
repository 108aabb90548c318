#include "ZCommons/Network/ZCNReservedDomains.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include <plist/plist.h>

#include "foundation/Mutex.h"
#include "foundation/NSException.h"
#include "platform/FileSystem.h"
#include "platform/Module.h"

using platform::FileSystem::exists;
using platform::FileSystem::readFile;

namespace {

constexpr char resourceName[] = "reservedDomains.plist";

struct GivenLocation {
  foundation::Mutex mutex;
  std::string path ZARVO_GUARDED_BY(mutex);
};

GivenLocation& givenLocation() {
  static GivenLocation& location = *new GivenLocation;
  return location;
}

// Where the resource may stand, the likeliest first.
std::vector<std::string> possiblePlaces() {
  static const char ofThisModule = 0;
  constexpr int foldersUp = 4;
  std::string folder = platform::modulePath(&ofThisModule);
  std::vector<std::string> places;
  for (int i = 0; i < foldersUp; ++i) {
    const std::size_t slash = folder.rfind('/');
    if (slash == std::string::npos) break;
    folder.resize(slash);
    if (i == 0) places.push_back(folder + '/' + resourceName);
    places.push_back(folder + '/' + ZARVO_RESOURCE_FOLDER + '/' + resourceName);
  }
  places.push_back(std::string(ZARVO_INSTALLED_RESOURCE_FOLDER) + '/' + resourceName);
  return places;
}

std::string resourcePath() {
  {
    GivenLocation& given = givenLocation();
    const foundation::MutexLock lock(given.mutex);
    if (!given.path.empty()) return given.path;
  }
  for (std::string& place : possiblePlaces()) {
    if (exists(place)) return std::move(place);
  }
  return {};
}

ZCNReservedDomains load() {
  const auto data = readFile(resourcePath());
  auto lists = data ? ZCNReservedDomains::listsFromData(*data) : std::nullopt;
  if (lists) return *std::move(lists);
  foundation::raise<foundation::NSInternalInconsistencyException>(
      std::string("Application resource available error. Attempt load resource with name: ") +
      resourceName + ".");
}

}  // namespace

const ZCNReservedDomains& ZCNReservedDomains::singleton() {
  static const ZCNReservedDomains& lists = *new ZCNReservedDomains(load());
  return lists;
}

void ZCNReservedDomains::setLocation(std::string_view path) {
  GivenLocation& given = givenLocation();
  const foundation::MutexLock lock(given.mutex);
  given.path = path;
}

std::optional<ZCNReservedDomains> ZCNReservedDomains::listsFromData(foundation::DataView data) {
  if (data.empty() || data.size() > UINT32_MAX) return std::nullopt;
  plist_t parsed = nullptr;
  plist_from_xml(reinterpret_cast<const char*>(data.data()),
                 static_cast<std::uint32_t>(data.size()), &parsed);
  const std::unique_ptr<void, decltype(&plist_free)> root(parsed, &plist_free);
  if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return std::nullopt;
  std::optional<Domains> twoLevel = domains(root.get(), "TWO_LEVEL");
  std::optional<Domains> threeLevel = domains(root.get(), "THREE_LEVEL");
  if (!twoLevel || !threeLevel) return std::nullopt;
  ZCNReservedDomains lists;
  lists.twoLevel_ = *std::move(twoLevel);
  lists.threeLevel_ = *std::move(threeLevel);
  return lists;
}

std::optional<ZCNReservedDomains::Domains> ZCNReservedDomains::domains(void* dictionary,
                                                                       const char* key) {
  Domains domains;
  const plist_t array = plist_dict_get_item(dictionary, key);
  if (!array) return domains;
  if (plist_get_node_type(array) != PLIST_ARRAY) return std::nullopt;
  domains.reserve(plist_array_get_size(array));
  plist_array_iter position = nullptr;
  plist_array_new_iter(array, &position);
  const std::unique_ptr<void, decltype(&free)> owner(position, &free);
  plist_t item = nullptr;
  while (plist_array_next_item(array, position, &item), item) {
    std::uint64_t length = 0;
    const char* const text = plist_get_string_ptr(item, &length);
    if (!text) return std::nullopt;
    domains.emplace(text, length);
  }
  return domains;
}
