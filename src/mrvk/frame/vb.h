// The VB runtime functions the business logic relies on: Val, Trim, number-to-text, date
// parsing and month arithmetic, rounding, and the modal boxes of the current session.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "mrvk/frame/variant.h"

namespace mrvk {

// A VB run-time failure (error number and description). Procedures catch it in their handler
// of last resort and report "<tag>" + Description(); it never crosses the module's edge.
class VbError : public std::runtime_error {
 public:
  VbError(int number, const std::string& description)
      : std::runtime_error(description), number_(number) {}
  int Number() const { return number_; }
  std::string Description() const { return what(); }

 private:
  int number_;
};

// Ends a call into the module at once, past every handler of the module: the person went away
// while a box waited for an answer, or a test met a box that its script does not answer. It
// is neither a VbError nor a std::exception, so no handler of last resort catches it; only
// the host's edge of the call does, and turns it into an error answer.
class AbortSignal {
 public:
  explicit AbortSignal(std::string why) : why_(std::move(why)) {}
  virtual ~AbortSignal() = default;
  const std::string& Why() const { return why_; }

 private:
  std::string why_;
};

// The VB run-time failures the logic can meet.
namespace vb_error {
inline constexpr int kDivisionByZero = 11;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kSubscriptOutOfRange = 9;
inline constexpr int kItemNotFound = 3265;
inline constexpr int kCannotShowModal = 401;
inline constexpr int kInvalidProcedureCall = 5;
inline constexpr int kControlArrayElement = 340;
}  // namespace vb_error

[[noreturn]] void RaiseDivisionByZero();

// VB Val: the leading number of a text; blanks, tabs and line feeds anywhere are skipped, a
// sign, digits, one decimal point and an exponent (E or D) are read, "&H"/"&O" prefixes give
// hexadecimal and octal. A text without a leading number gives 0.
double Val(std::string_view text);

// VB Trim: removes leading and trailing blanks (only the ASCII space, as VB does).
std::string Trim(std::string_view text);

// VB UCase: only ASCII letters have a case; Chinese and other characters stay as they are.
std::string UCase(std::string text);

// The ordinary number-to-text rule (VB's CStr of a Double): up to 15 significant digits, no
// trailing zeros, no thousands separator; 0 gives "0", 12.5 gives "12.5", 0.5 gives "0.5",
// -3 gives "-3"; magnitudes of 1E15 and above, and below 1E-4, use the "1E+15" form.
std::string NumberText(double value);

// VB's rounding of CInt/CLng/Round: half to even. 2.5 -> 2, 3.5 -> 4, -2.5 -> -2.
double RoundHalfEven(double value);

// VB's integer division a \ b of two whole numbers; b = 0 raises "Division by zero".
int64_t IntDiv(int64_t a, int64_t b);

// Reads a date typed or stored as text: "yyyy-mm-dd", also with "/" or "." separators and
// one-digit months and days ("2012-3-5"), optionally followed by a time part that is
// ignored. Returns nullopt for anything that is not a real calendar date.
std::optional<Date> ParseDate(std::string_view text);

// VB DateAdd("m", n, d): n months later (earlier when negative), keeping the day of the month
// and falling back to the last day of the target month when that month is shorter.
Date AddMonths(Date date, int months);
// VB DateAdd("d", n, d).
inline Date AddDays(Date date, int days) { return Date::FromSerial(date.serial() + days); }

// The date that stands for "no date" in columns that must not be null.
Date NoDate();

// ---- Modal boxes ---------------------------------------------------------------------------

// MsgBox button and icon flags and answers, as VB numbers them.
namespace msgbox {
inline constexpr int kOkOnly = 0;
inline constexpr int kOkCancel = 1;
inline constexpr int kYesNoCancel = 3;
inline constexpr int kYesNo = 4;
inline constexpr int kCritical = 16;
inline constexpr int kQuestion = 32;
inline constexpr int kExclamation = 48;
inline constexpr int kInformation = 64;
inline constexpr int kYesNoWarning = kYesNo + kExclamation;  // 52
inline constexpr int kOk = 1;
inline constexpr int kCancel = 2;
inline constexpr int kYes = 6;
inline constexpr int kNo = 7;
}  // namespace msgbox

// The UI port of a host session: where the module's modal boxes go. The web client answers
// from the browser, the screen protocol from its caller, tests from a script.
// A dialog of the module shown modally: the UI port lets the person work on it until it
// hides itself.
class IModalForm {
 public:
  virtual ~IModalForm() = default;
  virtual bool IsShown() const = 0;
  virtual std::string Title() const = 0;
};

class IUiPort {
 public:
  virtual ~IUiPort() = default;
  // Runs the person's work on a shown dialog until it hides; returns then.
  virtual void ShowModal(IModalForm& form) = 0;
  // Shows a message box and returns the button chosen (msgbox::kYes, ...).
  virtual int MsgBox(const std::string& prompt, int flags, const std::string& title) = 0;
  // Shows an input box; nullopt when the user cancels (VB gives "" then).
  virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                              const std::string& default_text) = 0;
};

// The UI port of the session whose screen is running on this thread. The host sets it around
// every call into the module; the module never sets it.
IUiPort* CurrentUiPort();
void SetCurrentUiPort(IUiPort* port);

// VB MsgBox and InputBox through the current session's UI port. Without a port (a batch job)
// MsgBox answers OK/yes-less defaults: kOk for an information box, kNo for a question.
int MsgBox(const std::string& prompt, int flags = msgbox::kOkOnly, const std::string& title = "");
// Shows a dialog modally through the current session's UI port and returns when it hides.
// Without a port (a batch job) no dialog can be shown: a run-time failure.
void ShowModal(IModalForm& form);
std::string InputBox(const std::string& prompt, const std::string& title = "",
                     const std::string& default_text = "");

}  // namespace mrvk
