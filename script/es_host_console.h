// The host of the interactive script console: one context for the console's whole
// life, `print` and `console.log` bound to one function that writes a line to the
// output sink, and a poll that gives pending events a turn on every 11th call, so
// that an event handler can stop a script by clearing `running`.
#pragma once
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "script/es_context.h"

namespace regmill::script {

class MyESContext2 : public ESContext {
 public:
  // Receives every text the console prints, line ends included.
  using OutputSink = std::function<void(const QString& text)>;

  // Sets the context up and binds `print` and `console.log`.
  explicit MyESContext2(OutputSink output, std::shared_ptr<ESEngine> engine = nullptr);
  ~MyESContext2() override;

  // The hook that processes pending events; empty for a console without events.
  void setPendingEventsHook(std::function<void()> hook);

  // Counts the step; on the call that finds the counter at 10 it runs the events
  // hook and resets the counter. Always gives `running`.
  bool poll() override;

  // Evaluates one input line with an empty file name and prints its outcome: the
  // value's text, or the message and "FILE:LINE" of an error object, or
  // "Uncaught exception: " and the text of any other thrown value.
  ESEvaluation evaluateLine(const QString& line);

  void write(const QString& text) { output_(text); }

  uint32_t stepCounter = 0;
  bool running = false;  // set while a line runs; clearing it stops the script

 protected:
  // Turns the machine's poll on or off. Only the events hook can clear `running`
  // between two instructions, so without a hook the console leaves polling off
  // (nothing could observe it) unless a subclass needs it for its own reasons.
  void updatePolling(bool subclassNeedsPolling);

 private:
  void printOutcome(const ESEvaluation& result);

  OutputSink output_;
  std::function<void()> pendingEvents_;
  std::unique_ptr<ESClass> printClass_;
};

}  // namespace regmill::script
