// Starts tests/packages/http_test_server.py on an ephemeral port of 127.0.0.1 for the
// length of a test. The server ends when this object closes its stdin.
#pragma once
#include <QProcess>
#include <string>

namespace regmill::testing {

class HttpTestServer {
 public:
  // Serves the bytes of `sourceFile`; port() is 0 when python3 or the server is missing.
  explicit HttpTestServer(const std::string& sourceFile) {
    process_.start("python3", {PACKAGES_TEST_DIR "/http_test_server.py", QString::fromStdString(sourceFile)});
    if (!process_.waitForStarted(10000)) return;
    while (!process_.canReadLine() && process_.waitForReadyRead(10000)) {
    }
    port_ = process_.readLine().trimmed().toInt();
  }
  ~HttpTestServer() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(5000)) process_.kill();
    process_.waitForFinished(5000);
  }
  int port() const { return port_; }
  std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }

 private:
  QProcess process_;
  int port_ = 0;
};

#define REGMILL_SKIP_WITHOUT_SERVER(server) \
  if ((server).port() == 0) GTEST_SKIP() << "python3 is missing, so the local HTTP server can't run"

}  // namespace regmill::testing
