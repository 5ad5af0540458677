// The library is built with hidden visibility: only what a plug-in may use is
// marked for export. ELF only, so the same marking serves the library and its
// users.
#ifndef DIAGCORE_EXPORT_H_
#define DIAGCORE_EXPORT_H_

#define DIAGCORE_EXPORT __attribute__((visibility("default")))

#endif  // DIAGCORE_EXPORT_H_
