#include "ZCommons/System/ZCSSystemUtils.h"

#include <errno.h>
#include <sys/random.h>

#include <array>
#include <memory>
#include <new>

#include "foundation/Assertion.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "foundation/StringEncoding.h"
#include "logging/DDLogMacros.h"
#include "platform/Process.h"
#include "platform/ProcessTable.h"
#include "platform/Task.h"

namespace {

using foundation::NullableText;

using BSDProcess = platform::ProcessTable::Entry;
using BSDProcessList = std::unique_ptr<const std::vector<BSDProcess>>;

constexpr const char* securityUtility = "/usr/bin/security";
constexpr const char* shell = "/bin/bash";
constexpr const char* systemKeychain = "/Library/Keychains/System.keychain";
constexpr std::string_view searchPipeline =
    "/usr/bin/security find-certificate -c \"%@\" -Z -a /Library/Keychains/System.keychain | grep "
    "^SHA-1";

// Its address stands for the class in log lines.
constexpr int classObject = 0;

void check(bool condition, std::string_view text, int line) {
  if (!condition) foundation::assertion(text, __FILE__, line);
}

/// Reads the table of all processes. Returns 0 and stores the list, or an errno value and none.
/// A table that grows while it is read is the process table's own matter.
int GetBSDProcessList(BSDProcessList* procList) {
  BSDProcessList result;
  int err = 0;
  check(result == nullptr, "result == NULL", __LINE__);
  try {
    auto processes = platform::ProcessTable::current().processes();
    if (processes) {
      result = std::make_unique<const std::vector<BSDProcess>>(*std::move(processes));
    } else {
      err = static_cast<int>(processes.error().code());
    }
  } catch (const std::bad_alloc&) {
    err = ENOMEM;
  }
  *procList = std::move(result);
  check((err == 0) == (*procList != nullptr), "(err == 0) == (*procList != NULL)", __LINE__);
  return err;
}

std::vector<std::string_view> componentsSeparated(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  while (true) {
    const std::size_t end = text.find(separator, start);
    pieces.push_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The hashes in lines such as "SHA-1 hash: 0123…"; a line of more or fewer than two pieces has
/// none.
std::vector<std::string> hashesInOutput(std::string_view output) {
  std::vector<std::string> hashes;
  for (const std::string_view line : componentsSeparated(output, '\n')) {
    const std::vector<std::string_view> pieces = componentsSeparated(line, ':');
    if (pieces.size() == 2) hashes.emplace_back(trimmed(pieces[1]));
  }
  return hashes;
}

}  // namespace

bool ZCSSystemUtils::rootPrivileges() { return platform::Process::effectiveUserIdentifier() == 0; }

int ZCSSystemUtils::cliUtil(NullableText utilPath, const std::vector<std::string>& arguments,
                            foundation::Data* outputData) {
  return cliUtil(utilPath, arguments, nullptr, outputData);
}

int ZCSSystemUtils::cliUtil(NullableText utilPath, const std::vector<std::string>& arguments,
                            NullableText currentDirPath, foundation::Data* outputData) {
  if (utilPath.isNull()) foundation::raiseArgumentException("utilPath");
  const platform::Task task{utilPath.string(), arguments, currentDirPath.string()};
  platform::TaskRunner& tasks = platform::TaskRunner::current();
  return outputData ? tasks.runCapturingOutput(task, *outputData) : tasks.run(task);
}

int ZCSSystemUtils::cliUtilOutput(NullableText utilPath, const std::vector<std::string>& arguments,
                                  std::string* output) {
  using foundation::StringEncoding;
  if (!output) return cliUtil(utilPath, arguments, nullptr);
  foundation::Data data;
  const int status = cliUtil(utilPath, arguments, &data);
  auto text = foundation::stringFromData(data, StringEncoding::UTF8);
  if (!text) text = foundation::stringFromData(data, StringEncoding::ISOLatin1);
  *output = *std::move(text);
  return status;
}

std::string ZCSSystemUtils::createUUID() {
  std::array<std::uint32_t, 4> words;
  ZARVO_ASSERT(getentropy(words.data(), sizeof words) == 0);
  words[1] = (words[1] & 0xFFFF0FFF) | 0x00004000;  // version 4: random
  words[2] = (words[2] & 0x3FFFFFFF) | 0x80000000;  // the variant of RFC 4122
  return foundation::format("%08X%08X%08X%08X", words[0], words[1], words[2], words[3]);
}

bool ZCSSystemUtils::addCertToSystemKeychainAsTrustedWithName(std::string_view name,
                                                              std::string_view path) {
  DDLogInfo(159, "(%@) Adding cert to system keychain: \"%@\" path: \"%@\"", THIS_FILE, name, path);
  removeCertFromSystemKeychainWithName(name);
  const int result = cliUtil(
      securityUtility,
      {"add-trusted-cert", "-d", "-r", "trustRoot", "-k", systemKeychain, std::string(path)},
      nullptr);
  DDLogInfo(177, "(%@) Exec security add cert result: %d", THIS_FILE, result);
  return result == 0;
}

bool ZCSSystemUtils::removeCertFromSystemKeychainWithName(std::string_view name) {
  DDLogInfo(186, "(%@) Deleting certs from system keychain by name: \"%@\"", THIS_FILE, name);
  std::string output;
  const int found = cliUtilOutput(shell, {"-c", foundation::format(searchPipeline, name)}, &output);
  if (found != 0) return false;
  if (output.empty()) return true;

  bool anyDeleted = false;
  for (const std::string& hash : hashesInOutput(output)) {
    const int result =
        cliUtil(securityUtility, {"delete-certificate", "-Z", hash, systemKeychain}, nullptr);
    DDLogInfo(210, "(%@) Exec security delete cert \"%@\" result: %d", THIS_FILE, hash, result);
    anyDeleted = anyDeleted || result == 0;
  }
  return anyDeleted;
}

std::vector<std::int32_t> ZCSSystemUtils::childPidsForPid(std::int32_t pid) {
  std::vector<std::int32_t> children;
  BSDProcessList processes;
  const int err = GetBSDProcessList(&processes);
  if (err != 0) {
    DDLogError(225, "(%@[%p] %@) GetBSDProcessList: Error obtaining process list. errno = %d",
               THIS_FILE, &classObject, "childPidsForPid:", err);
    return children;
  }
  for (const BSDProcess& process : *processes) {
    if (process.parent == pid) children.push_back(process.pid);
  }
  return children;
}
