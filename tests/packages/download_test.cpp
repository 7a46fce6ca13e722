// Downloads against a real HTTP server on 127.0.0.1 that cuts connections, ignores
// Range, redirects, answers 404, sends less than it announces or stalls: each ends
// with the target equal to the source or with the failure reported, within bounds.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>
#include <filesystem>
#include <map>

#include "packages/download_texts.h"
#include "packages/downloads_list.h"
#include "packages/loom_network_access_manager.h"
#include "tests/packages/http_test_server.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

struct Fixture {
  static QCoreApplication* application() {
    static int argc = 1;
    static char name[] = "download_test", *argv[] = {name, nullptr};
    return QCoreApplication::instance() ? nullptr : new QCoreApplication(argc, argv);
  }
  Fixture() : server((application(), folder.write("source.bin", source))) {}
  QUrl url(const std::string& path) const { return QUrl(QString::fromStdString(server.url(path))); }
  QString file(const std::string& name) const { return QString::fromStdString(folder.file(name)); }
  const std::string source = [] {
    std::string bytes;
    for (int i = 0; bytes.size() < 600000; ++i) bytes += std::to_string(i) + ",";
    return bytes;
  }();
  ScratchFolder folder;
  testing::HttpTestServer server;
};

// Runs the event loop until `done` holds, for at most 60 s; gives whether it holds.
bool runUntil(const std::function<bool()>& done) {
  QTimer wake;  // the loop looks again at least every 100 ms
  wake.start(100);
  for (QDeadlineTimer deadline(60000); !done() && !deadline.hasExpired();)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return done();
}

TEST(Download, EachEndsWithTheSourceOrItsFailureAndNoPartialFile) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  std::filesystem::create_directory(fixture.folder.path() / "keep");
  fixture.folder.write("keep/x.bin", "previous");
  fixture.folder.write("keep/y.bin", "previous");
  struct Case {
    std::string path, folder;
    uint32_t flags;
    std::string target;  // where the source lands; empty: the download fails
    std::string error;   // "*": any failure
    int retries;
  };
  const Case cases[] = {
      {"/file/x.bin", "file", 0, "file/x.bin", "", 0},
      {"/drop/x.bin", "drop", 0, "drop/x.bin", "", 1},        // resumes from its partial file
      {"/norange/x.bin", "norange", 0, "norange/x.bin", "", 1},  // starts it again
      {"/redirect/x.bin", "redirect", 0, "", "server replied 302 Found", 0},
      // Each attempt at a short body brings half of what is left: retries end at their bound.
      {"/short/x.bin", "short", 0, "", "*", 3},
      {"/stall/x.bin", "stall", 0, "", "*", -1},
      {"/missing/x.bin", "keep", DownloadInfo::Overwrite, "", "server replied 404 Not Found", 0},
      {"/file/x.bin", "keep", 0, "keep/x(1).bin", "", 0},
      {"/file/y.bin", "keep", DownloadInfo::Overwrite, "keep/y.bin", "", 0},
      // Queued behind the others, and by its start the folder is a file.
      {"/file/q.bin", "gone", 0, "", "cannot open " + fixture.folder.file("gone/q.bin.part") + " for writing", 0},
  };
  DownloadSettings settings;
  settings.transferTimeoutMilliseconds = 1000;
  settings.maximumRetries = 3;
  DownloadsListView list(settings);
  std::map<DownloadsListViewItem*, const Case*> caseOf;
  for (const Case& c : cases) caseOf[list.startDownload(fixture.url(c.path), fixture.file(c.folder), nullptr, c.flags)] = &c;
  std::filesystem::remove(fixture.folder.file("gone"));
  fixture.folder.write("gone", "a file where the folder was");
  EXPECT_EQ(list.runningCount(), 4);
  EXPECT_TRUE(list.rows()[4]->isQueued() && !list.rows()[4]->isVisible());
  EXPECT_TRUE(runUntil([&] {
    return std::all_of(list.rows().begin(), list.rows().end(), [](const auto& row) { return row->info().finished; });
  })) << "downloads still running after 60 s";
  EXPECT_EQ(list.runningCount(), 0);
  EXPECT_EQ(list.history().size(), qsizetype(std::size(cases)));
  for (const auto& row : list.rows()) {
    const Case& c = *caseOf[row.get()];
    SCOPED_TRACE(c.path + " into " + c.folder);
    std::string error = row->info().error.toStdString();
    EXPECT_EQ(c.error == "*" && !error.empty() ? "*" : error, c.error);
    EXPECT_EQ(QFileInfo::exists(row->info().file), !c.target.empty() || c.folder == "keep");
    EXPECT_TRUE(c.target.empty() ||
                (row->info().file == fixture.file(c.target) && fixture.folder.read(c.target) == fixture.source));
    EXPECT_FALSE(QFileInfo::exists(row->partialPath()));
    EXPECT_EQ(c.retries < 0 ? -1 : row->retries(), c.retries);
  }
  EXPECT_TRUE(fixture.folder.read("keep/x.bin") == "previous");  // a failed update keeps the old file
}

// Gets the URL through the web views' manager and gives the body and content type.
std::pair<std::string, std::string> get(LoomNetworkAccessManager& manager, const QString& url) {
  std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(QUrl(url))));
  runUntil([&] { return reply->isFinished(); });
  QCoreApplication::processEvents();  // the canned reply says finished from the event loop too
  return {reply->readAll().toStdString(), reply->header(QNetworkRequest::ContentTypeHeader).toString().toStdString()};
}

TEST(LoomNetworkAccessManager, AnswersWithCannedHtmlOrRewritesTheUrl) {
  Fixture fixture;
  REGMILL_SKIP_WITHOUT_SERVER(fixture.server);
  LoomNetworkAccessManager::addContentRule("http://help/.*", "<p>\u00e9t\u00e9</p>");
  LoomNetworkAccessManager::addContentRule("http://help/first", "never: the rule before answers");
  LoomNetworkAccessManager::addRewriteRule("^http://packages\\.invalid/(.*)$", fixture.url("/file/").toString() + "\\1");
  LoomNetworkAccessManager manager;
  manager.setProxy(QNetworkProxy::NoProxy);
  EXPECT_EQ(get(manager, "http://help/first"), (std::pair<std::string, std::string>("<p>\u00e9t\u00e9</p>", "text/html")));
  EXPECT_TRUE(get(manager, "http://packages.invalid/list.xml").first == fixture.source);
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
  EXPECT_EQ(downloadTarget(QUrl("http://h:8/x?a=[1]"), dir, DownloadInfo::NameAfterWholeUrl),
            dir + "/http%3a%2f%2fh%3a8%2fx%3fa%3d%5b1%5d");
  EXPECT_EQ(downloadTarget(QUrl("http://h/"), dir, 0), dir + "/http%3a%2f%2fh%2f");

  // Time left is elapsed / done * (total - done), in whole minutes rounded up.
  EXPECT_EQ(timeRemainingText(60000, 100, 200).toStdString(), "1 minute remaining");
  EXPECT_EQ(timeRemainingText(60001, 100, 200).toStdString(), "2 minutes remaining");
  EXPECT_EQ(timeRemainingText(1000, 100, -1).toStdString() + timeRemainingText(1000, 0, 100).toStdString(), "");
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
