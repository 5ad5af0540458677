#include "support/StdoutCapture.h"

#include <iostream>

namespace diagcore_test {

StdoutCapture::StdoutCapture() : saved_(std::cout.rdbuf(buffer_.rdbuf())) {}

StdoutCapture::~StdoutCapture() {
  std::cout.rdbuf(saved_);
}

}  // namespace diagcore_test
