// Captures what is written to std::cout while it lives (the library writes a
// few debugging lines there).
#ifndef DIAGCORE_TESTS_SUPPORT_STDOUTCAPTURE_H_
#define DIAGCORE_TESTS_SUPPORT_STDOUTCAPTURE_H_

#include <sstream>
#include <streambuf>
#include <string>

namespace diagcore_test {

class StdoutCapture {
 public:
  StdoutCapture();
  ~StdoutCapture();
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;

  // Everything written so far.
  std::string text() const { return buffer_.str(); }

 private:
  std::ostringstream buffer_;
  std::streambuf* saved_;
};

}  // namespace diagcore_test

#endif  // DIAGCORE_TESTS_SUPPORT_STDOUTCAPTURE_H_
