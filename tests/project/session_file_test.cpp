// Session files: what the participants and the list of open files write, read back
// the same, with paths kept relative below the session's folder.
#include "project/session_file.h"

#include <gtest/gtest.h>

#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"
#include "xml/xml_string.h"

namespace regmill {
namespace {

class Window : public SessionParticipant {
 public:
  QString sessionName() const override { return "MainWindow"; }
  void saveSession(XMLElement& element) override { element.setAttributeCopy("geometry", geometry.toUtf8().constData()); }
  void loadSession(const XMLElement& element) override { geometry = QString::fromUtf8(element.getAttribute("geometry")); }
  QString geometry;
};

TEST(SessionFile, SavesAndLoadsParticipantsAndOpenFiles) {
  testing::ScratchFolder folder;
  const QString base = QString::fromStdString(folder.path().string());
  Window window;
  window.geometry = "10,20,800,600";
  SessionFile session;
  session.addParticipant(&window);
  session.openFiles() = {{base + "/src/main.c", "UTF-8"}, {"/elsewhere/x.h", "Latin1"}};
  ASSERT_TRUE(session.save(base + "/app.lkSession").ok());
  EXPECT_EQ(folder.read("app.lkSession"),
            "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE Larkloom_Session_File>\n<session>\n"
            "  <MainWindow geometry=\"10,20,800,600\" />\n  <Files>\n"
            "    <File codec=\"UTF-8\" path=\"src/main.c\" />\n    <File codec=\"Latin1\" path=\"/elsewhere/x.h\" />\n"
            "  </Files>\n</session>\n");

  Window restored;
  SessionFile reread;
  reread.addParticipant(&restored);
  ASSERT_TRUE(reread.load(base + "/app.lkSession").ok());
  EXPECT_EQ(restored.geometry, "10,20,800,600");
  EXPECT_EQ(reread.openFiles(), session.openFiles());

  folder.write("other.xml", "<!DOCTYPE Larkloom_Project_File>\n<solution/>\n");
  EXPECT_FALSE(reread.load(base + "/other.xml").ok());
  EXPECT_EQ(reread.openFiles(), session.openFiles());
}

}  // namespace
}  // namespace regmill
