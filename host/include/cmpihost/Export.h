// What the host library offers its users (tests, the command, plug-in
// authors) is marked for export. ELF only, so the same marking serves the
// library and its users.
#ifndef CMPIHOST_EXPORT_H_
#define CMPIHOST_EXPORT_H_

#define CMPIHOST_EXPORT __attribute__((visibility("default")))

#endif  // CMPIHOST_EXPORT_H_
