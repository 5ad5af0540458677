/*
 * CMPI platform selection.
 *
 * The rest of the CMPI headers only need to know which compiler and operating
 * system they are built for. This project builds for Linux with GCC or Clang,
 * so that is the one platform recognised here; it is selected automatically
 * so that a provider does not have to pass -DCMPI_PLATFORM_... itself.
 */
#ifndef CMPI_CMPIPL_H
#define CMPI_CMPIPL_H

#if !defined(CMPI_PLATFORM_LINUX_GENERIC_GNU)
#if defined(__linux__) && defined(__GNUC__)
#define CMPI_PLATFORM_LINUX_GENERIC_GNU 1
#else
#error "These CMPI headers support Linux with GCC or Clang only (CMPI_PLATFORM_LINUX_GENERIC_GNU)."
#endif
#endif

#endif /* CMPI_CMPIPL_H */
