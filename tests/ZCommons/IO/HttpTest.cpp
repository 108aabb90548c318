#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <stdio.h>

#include "ZCommons/IO/NSDataUtils.h"
#include "ZCommons/IO/ZCIOChunkedStream.h"
#include "ZCommons/IO/ZCIODescriptorDelegate.h"
#include "ZCommons/IO/ZCIOGzipStream.h"
#include "ZCommons/IO/ZCIOUtils.h"
#include "foundation/Format.h"

using foundation::Data;
using platform::FileHandle;

namespace {

FileHandle tcpSocket() { return FileHandle(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)); }

/// One end of a connection whose bodies are coded in one way.
struct Peer {
  void send(std::string head, Data bytes) {
    if (isGzip) bytes = *NSDataUtils::compressGzip(bytes);
    if (isGzip) head += "\r\nContent-Encoding: gzip";
    head += isChunked ? "\r\nTransfer-Encoding: chunked\r\n\r\n"
                      : foundation::format("\r\nContent-Length: %lu\r\n\r\n", bytes.size());
    stream->write(foundation::dataOf(head).data(), head.size());
    (isChunked ? std::make_shared<ZCIOChunkedStream>(stream) : stream)
        ->write(bytes.data(), bytes.size());
  }

  Data receive() {
    while (!ZCIOUtils::readLine(*stream).value_or("").empty()) continue;
    body = stream;
    if (isChunked) body = std::make_shared<ZCIOChunkedStream>(body);
    if (isGzip) body = std::make_shared<ZCIOGzipStream>(body);
    return *ZCIOUtils::readToEnd(*body);
  }

  // Now the chunked stream that was read writes its last chunk into nothing.
  ~Peer() { delegate.reset(); }

  const bool isChunked, isGzip;
  std::shared_ptr<ZCIODescriptorDelegate> delegate;
  std::shared_ptr<ZCIOStream> stream = std::make_shared<ZCIOStream>(delegate), body = nullptr;
};

}  // namespace

// From curl through this process, which decodes and codes again, to Python's server and back.
TEST(Http, CarriesBodiesThereAndBack) {
  alarm(60);
  FILE* const server = popen("exec python3 '" ECHO_SERVER "'", "r");
  const FileHandle listener = tcpSocket();
  sockaddr_in address{}, serverAddress{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
  ASSERT_EQ(fscanf(server, "%hu", &serverAddress.sin_port), 1);
  serverAddress.sin_port = htons(serverAddress.sin_port);
  socklen_t length = sizeof address;
  ASSERT_EQ(listen(listener.descriptor(), 4), 0);
  getsockname(listener.descriptor(), reinterpret_cast<sockaddr*>(&address), &length);
  for (const int coding : {1, 2, 3}) {
    const bool isChunked = coding & 1, isGzip = coding & 2;
    const std::string command = foundation::format(
        "cat /bin/sh | %@ %@ -sS --compressed --noproxy '*' -H Expect: --data-binary @- "
        "http://127.0.0.1:%d | cmp - /bin/sh",
        isGzip ? "gzip | curl -H 'Content-Encoding: gzip'" : "curl",
        isChunked ? "-H 'Transfer-Encoding: chunked'" : "", int{ntohs(address.sin_port)});
    FILE* const client = popen(command.c_str(), "r");
    FileHandle accepted(accept(listener.descriptor(), nullptr, nullptr)), connected = tcpSocket();
    connect(connected.descriptor(), reinterpret_cast<sockaddr*>(&serverAddress), length);
    Peer in{isChunked, isGzip, std::make_shared<ZCIODescriptorDelegate>(std::move(accepted))};
    Peer out{isChunked, isGzip, std::make_shared<ZCIODescriptorDelegate>(std::move(connected))};
    out.send("POST / HTTP/1.1", in.receive());
    in.send("HTTP/1.1 200 OK", out.receive());
    EXPECT_EQ(pclose(client), 0) << command;
  }
  EXPECT_EQ(pclose(server), 0);
}
