// A database test that drives one screen of the module as a person does: opened by class
// name, interface operations called by name, gestures on its controls, and the reports it
// raised read back.
#pragma once

#include <string>
#include <vector>

#include "support/engines.h"

namespace kvtest {

class SheetTest : public EngineTest {
 protected:
  // Opens the screen and forgets the events of opening; null (and a failure) when it fails.
  kvhost::Screen* OpenScreen(const char* cls, int32_t prog);
  // An interface operation; its boolean result, false when the call failed.
  bool Call(const std::string& method, std::vector<mrvk::Variant> args = {});
  // A gesture on control(index) of the screen; a failure when it is refused.
  void Gest(const std::string& control, int index, const kvhost::Gesture& g);
  // The ErrMessage reports raised since the last look, "text|level|title", with the Message
  // texts among them when asked.
  std::vector<std::string> TakeReports(bool include_messages);
  // The last box shown, "prompt|flags|title".
  std::string LastBox();

  kvhost::Screen* screen_ = nullptr;
};

}  // namespace kvtest
