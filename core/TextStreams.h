// Formatted reading and writing exactly as a freshly made string stream does
// it, through one stream per thread: making a stream (its locale facets) costs
// far more than the few characters it reads or writes. Internal to the library.
#ifndef DIAGCORE_CORE_TEXTSTREAMS_H_
#define DIAGCORE_CORE_TEXTSTREAMS_H_

#include <sstream>
#include <string>

namespace NQENDRA20 {

// The thread's input stream, holding `text`, in the state of
// std::istringstream(text): no error flags, default format, the global locale.
std::istringstream& ReadingStream(const std::string& text);

// The thread's output stream, empty, in the state of std::ostringstream().
// What was written is read with str() before the next call on this thread.
std::ostringstream& WritingStream();

// `pointer` as std::ostringstream() << pointer writes it: "0" for null,
// otherwise "0x" and lower-case hex digits, grouped if the global locale
// groups numbers.
std::string PointerText(const void* pointer);

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_TEXTSTREAMS_H_
