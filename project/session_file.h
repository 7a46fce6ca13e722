// The session file kept beside a solution: the workbench's window state, which is
// no part of the solution and never affects a build. Under its root `session`
// stands one element for each participant, named by it and read and written by it,
// and `Files`, one `File` child for each open file with its path (relative to the
// session file where it lies below it) and its text codec.
#pragma once
#include <QList>
#include <QString>
#include <vector>

#include "base/status.h"
#include "xml/xml_node.h"

namespace regmill {

// An object that keeps its state in the session: a window, a list of breakpoints.
class SessionParticipant {
 public:
  virtual ~SessionParticipant() = default;
  virtual QString sessionName() const = 0;
  // Fills the element that saving made under this participant's name.
  virtual void saveSession(XMLElement& element) = 0;
  // Reads the element of this participant's name; not called when there is none.
  virtual void loadSession(const XMLElement& element) = 0;
};

struct SessionOpenFile {
  QString path;  // absolute
  QString codec = "Latin1";
  bool operator==(const SessionOpenFile&) const = default;
};

class SessionFile {
 public:
  // Participants are not owned; each must outlive the session file's use.
  void addParticipant(SessionParticipant* participant) { participants_.push_back(participant); }

  QList<SessionOpenFile>& openFiles() { return openFiles_; }

  Status save(const QString& path);
  // A file that is not a session file fails and changes nothing.
  Status load(const QString& path);

 private:
  std::vector<SessionParticipant*> participants_;
  QList<SessionOpenFile> openFiles_;
};

}  // namespace regmill
