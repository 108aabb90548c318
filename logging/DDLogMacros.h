#pragma once

#include "logging/DDLog.h"
#include "logging/DDSourceName.h"

/// Log calls: the line of the source, then a format and its arguments.
///
///     DDLogWarn(__LINE__, "(%@ %s) Cannot read %@.", THIS_FILE, __func__, url);
///
/// The global level is tested first: when it is off for the flag, nothing else is evaluated. Errors
/// are written when the call returns, the others soon after.
#define DDLogError(line, ...) DD_LOG(false, ::DDLogFlag::error, line, __VA_ARGS__)
#define DDLogWarn(line, ...) DD_LOG(true, ::DDLogFlag::warning, line, __VA_ARGS__)
#define DDLogInfo(line, ...) DD_LOG(true, ::DDLogFlag::info, line, __VA_ARGS__)
#define DDLogDebug(line, ...) DD_LOG(true, ::DDLogFlag::debug, line, __VA_ARGS__)
#define DDLogVerbose(line, ...) DD_LOG(true, ::DDLogFlag::verbose, line, __VA_ARGS__)

/// The short name of the source file; the first argument of most log lines.
#define THIS_FILE (::DDStaticSourceName(__FILE__))

/// Logs with a flag of `DDLogFlag`; what the macros above expand to.
#define DD_LOG(asynchronous, flag, line, ...)                                                   \
  do {                                                                                          \
    if (const std::uint32_t ddLogMask = ::DDLog::globalLogLevel(); (ddLogMask & (flag)) != 0) { \
      ::DDLog::log(asynchronous, ddLogMask, flag, 0, __FILE__, __func__, line, nullptr,         \
                   __VA_ARGS__);                                                                \
    }                                                                                           \
  } while (false)
