// Downloads against a real HTTP server on 127.0.0.1 that cuts connections, ignores
// Range, redirects, answers 404, sends less than it announces or stalls: each ends
// with the target equal to the source or with the failure reported, within bounds.
// The same server shows what a common command-line client does (see README.md).
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>
#include <random>

#include "packages/download_texts.h"
#include "packages/downloads_list.h"
#include "packages/loom_network_access_manager.h"
#include "tests/packages/http_test_server.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::HttpTestServer;
using testing::ScratchFolder;

void ensureApplication() {
  static int argc = 1;
  static char name[] = "download_test";
  static char* argv[] = {name, nullptr};
  static QCoreApplication* application = QCoreApplication::instance() ? nullptr : new QCoreApplication(argc, argv);
  (void)application;
}

std::string randomBytes(size_t size) {
  std::mt19937 random(3);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = char(random());
  return bytes;
}

// Runs the event loop until every row has finished, or fails the test after 60 s.
void waitForAll(DownloadsListView& list) {
  QEventLoop loop;
  auto allDone = [&] {
    for (const auto& row : list.rows())
      if (!row->info().finished) return false;
    return true;
  };
  QObject::connect(&list, qOverload<const DownloadInfo&>(&DownloadsListView::finished), &loop, [&] {
    if (allDone()) QTimer::singleShot(0, &loop, &QEventLoop::quit);
  });
  QTimer::singleShot(60000, &loop, [&] {
    ADD_FAILURE() << "downloads still running after 60 s";
    loop.quit();
  });
  if (!allDone()) loop.exec();
}

struct Fixture {
  Fixture() : server((ensureApplication(), folder.write("source.bin", source))) {}
  const std::string source = randomBytes(600000);
  ScratchFolder folder;
  HttpTestServer server;
};

TEST(Download, EndsWithTheSourceOrAReportedFailureAndNoPartialFile) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  struct Case {
    const char* path;
    const char* error;  // empty: the target must equal the source
  };
  const Case cases[] = {{"/file/", ""},
                        {"/drop/", ""},
                        {"/norange/", ""},
                        {"/redirect/", "server replied 302 Found"},
                        {"/missing/", "server replied 404 Not Found"}};
  DownloadSettings settings;
  DownloadsListView list(settings);
  for (const Case& c : cases) {
    const std::string folder = fixture.folder.file(std::string(c.path).substr(1));
    list.startDownload(QUrl(QString::fromStdString(fixture.server.url(std::string(c.path) + "x.bin"))),
                       QString::fromStdString(folder), nullptr, 0);
  }
  EXPECT_EQ(list.runningCount(), 4);  // the fifth waits, unseen, for a free place
  EXPECT_TRUE(list.rows()[4]->isQueued());
  EXPECT_FALSE(list.rows()[4]->isVisible());
  waitForAll(list);
  EXPECT_EQ(list.runningCount(), 0);
  for (const auto& row : list.rows()) {
    const DownloadInfo& info = row->info();
    std::string path = info.url.path().toStdString();
    const Case& c = *std::find_if(std::begin(cases), std::end(cases), [&](const Case& each) { return path.starts_with(each.path); });
    SCOPED_TRACE(path);
    EXPECT_EQ(info.error.toStdString(), c.error);
    EXPECT_EQ(QFileInfo::exists(info.file), *c.error == '\0');
    if (*c.error == '\0') {
      EXPECT_EQ(testing::readFile(info.file.toStdString()), fixture.source);
    }
    EXPECT_FALSE(QFileInfo::exists(row->partialPath()));
    // The cut-short ones needed a second attempt.
    if (path.starts_with("/drop/") || path.starts_with("/norange/")) {
      EXPECT_GE(row->retries(), 1);
    }
  }
  EXPECT_EQ(list.history().size(), 5);
}

TEST(Download, ABodyShorterThanAnnouncedAndAStalledServerFailWithinBounds) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  DownloadSettings settings;
  settings.transferTimeoutMilliseconds = 1000;
  settings.maximumRetries = 3;
  DownloadsListView list(settings);
  QString folder = QString::fromStdString(fixture.folder.file("out"));
  list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/short/x.bin"))), folder, nullptr, 0);
  list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/stall/y.bin"))), folder, nullptr, 0);
  waitForAll(list);
  for (const auto& row : list.rows()) {
    // Each attempt at the short body brings half of what is left, so the retries
    // end only at their bound.
    if (row->info().url.path().startsWith("/short/")) {
      EXPECT_EQ(row->retries(), 3);
    }
    EXPECT_FALSE(row->info().error.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(row->info().file));
    EXPECT_FALSE(QFileInfo::exists(row->partialPath()));
  }
}

TEST(Download, AQueuedDownloadThatCannotMakeItsPartialFileEndsWithThatFailure) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  DownloadSettings settings;
  settings.transferTimeoutMilliseconds = 300;
  DownloadsListView list(settings);
  QString running = QString::fromStdString(fixture.folder.file("running"));
  QString gone = QString::fromStdString(fixture.folder.file("gone"));
  for (int i = 0; i < 4; ++i)
    list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/stall/" + std::to_string(i)))), running,
                       nullptr, 0);
  auto* queued = list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/file/q.bin"))), gone, nullptr, 0);
  std::filesystem::remove(gone.toStdString());
  fixture.folder.write("gone", "a file where the folder was");
  waitForAll(list);
  EXPECT_EQ(queued->info().error.toStdString(), "cannot open " + gone.toStdString() + "/q.bin.part for writing");
  EXPECT_EQ(list.runningCount(), 0);
}

TEST(Download, OverwriteReplacesOnlyAfterSuccessAndOtherwiseTheNameIsNumbered) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  fixture.folder.write("x.bin", "previous");
  DownloadsListView list{DownloadSettings()};
  QString folder = QString::fromStdString(fixture.folder.path().string());
  auto* failed = list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/missing/x.bin"))), folder,
                                    nullptr, DownloadInfo::Overwrite);
  auto* numbered = list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/file/x.bin"))), folder, nullptr, 0);
  waitForAll(list);
  EXPECT_EQ(fixture.folder.read("x.bin"), "previous");  // a failed update keeps the old file
  EXPECT_EQ(numbered->info().file.toStdString(), fixture.folder.file("x(1).bin"));
  auto* replaced = list.startDownload(QUrl(QString::fromStdString(fixture.server.url("/file/x.bin"))), folder,
                                      nullptr, DownloadInfo::Overwrite);
  waitForAll(list);
  EXPECT_TRUE(failed->info().finished && replaced->info().error.isEmpty());
  EXPECT_EQ(fixture.folder.read("x.bin"), fixture.source);
}

// Gets the URL through the web views' manager and gives the body and content type.
std::pair<std::string, std::string> get(LoomNetworkAccessManager& manager, const QString& url) {
  QNetworkReply* reply = manager.get(QNetworkRequest(QUrl(url)));
  QEventLoop loop;
  QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
  QTimer::singleShot(20000, &loop, &QEventLoop::quit);
  if (!reply->isFinished()) loop.exec();
  QTimer::singleShot(0, &loop, &QEventLoop::quit);
  loop.exec();  // the canned reply says finished from the event loop too
  std::pair<std::string, std::string> result{reply->readAll().toStdString(),
                                             reply->header(QNetworkRequest::ContentTypeHeader).toString().toStdString()};
  delete reply;
  return result;
}

TEST(LoomNetworkAccessManager, AnswersWithCannedHtmlOrRewritesTheUrl) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  LoomNetworkAccessManager::clearRules();
  LoomNetworkAccessManager::addContentRule("http://help/.*", "<p>\u00e9t\u00e9</p>");
  LoomNetworkAccessManager::addContentRule("http://help/first", "never: the rule before answers");
  LoomNetworkAccessManager::addRewriteRule("^http://packages\\.invalid/(.*)$",
                                           QString::fromStdString(fixture.server.url("/file/")) + "\\1");
  LoomNetworkAccessManager manager;
  manager.setProxy(QNetworkProxy::NoProxy);
  auto [body, type] = get(manager, "http://help/first");
  EXPECT_EQ(body, "<p>\u00e9t\u00e9</p>");
  EXPECT_EQ(type, "text/html");
  EXPECT_EQ(get(manager, "http://packages.invalid/list.xml").first, fixture.source);
  // Only a match of the whole text answers with HTML.
  EXPECT_NE(get(manager, "http://127.0.0.1:1/x?http://help/").second, "text/html");
  LoomNetworkAccessManager::clearRules();
}

TEST(DownloadTexts, TargetNamesTimeLeftAndProgressLine) {
  ScratchFolder folder;
  QString dir = QString::fromStdString(folder.path().string());
  folder.write("a.tar.gz", "");
  folder.write("a.tar(1).gz", "");
  folder.write("README", "");
  EXPECT_EQ(downloadTarget(QUrl("http://h/p/a.tar.gz"), dir, 0), dir + "/a.tar(2).gz");
  EXPECT_EQ(downloadTarget(QUrl("http://h/README"), dir, 0), dir + "/README(1)");
  EXPECT_EQ(downloadTarget(QUrl("http://h/README"), dir, DownloadInfo::Overwrite), dir + "/README");
  EXPECT_EQ(downloadTarget(QUrl("http://h:8/x?a=[1]"), dir, DownloadInfo::NameAfterWholeUrl),
            dir + "/http%3a%2f%2fh%3a8%2fx%3fa%3d%5b1%5d");
  EXPECT_EQ(downloadTarget(QUrl("http://h/"), dir, 0), dir + "/http%3a%2f%2fh%2f");

  // Time left is elapsed / done * (total - done), in whole minutes rounded up.
  EXPECT_EQ(timeRemainingText(60000, 100, 200).toStdString(), "1 minute remaining");
  EXPECT_EQ(timeRemainingText(60001, 100, 200).toStdString(), "2 minutes remaining");
  EXPECT_EQ(timeRemainingText(1000, 100, -1).toStdString(), "");
  EXPECT_EQ(timeRemainingText(1000, 0, 100).toStdString(), "");

  DownloadInfo info;
  info.done = 3 << 20;
  info.total = 12 << 20;
  EXPECT_EQ(progressLine(info, 3000).toStdString(), "3.0 MB of 12.0 MB, 1.0 MB/s, 1 minute remaining");
  info.total = -1;
  info.done = 1000;
  EXPECT_EQ(progressLine(info, 0).toStdString(), "1000 bytes");
}

}  // namespace
}  // namespace regmill
