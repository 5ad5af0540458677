/*
 * CMPI operating-system bindings: the thread, mutex, condition and thread-key
 * types that the broker's extended services (CMPIBrokerExtFT) hand out, and
 * the linkage of the functions a provider exports.
 */
#ifndef CMPI_CMPIOS_H
#define CMPI_CMPIOS_H

#include "cmpipl.h"

/*
 * Threads, mutexes and conditions are opaque to a provider: the broker
 * creates them and only ever gets them back, so a plain pointer carries any
 * implementation.
 */
#define CMPI_THREAD_RETURN void*
#define CMPI_THREAD_TYPE void*
#define CMPI_MUTEX_TYPE void*
#define CMPI_COND_TYPE void*

/*
 * The thread-key type is the one place where CMPI 2.0 (unsigned long, 8 bytes
 * on LP64) and the brokers in use (pthread_key_t, 4 bytes) disagree. We keep
 * the 2.0 width; a provider that uses the broker's thread keys at all should
 * zero-initialise its key so that a broker writing only 4 bytes still leaves
 * a valid value. Better still, use the platform's own thread-local storage.
 */
#define CMPI_THREAD_KEY_TYPE unsigned long

/* No special calling convention on this platform. */
#define CMPI_THREAD_CDECL

/*
 * A broker finds a provider's factory functions with dlsym(), so they must be
 * visible even when the provider is built with -fvisibility=hidden, and they
 * must have C linkage when the provider is written in C++.
 */
#if defined(__GNUC__) && __GNUC__ >= 4
#define CMPI_EXPORT __attribute__((visibility("default")))
#else
#define CMPI_EXPORT
#endif

#ifdef __cplusplus
#define CMPI_EXTERN_C extern "C" CMPI_EXPORT
#else
#define CMPI_EXTERN_C CMPI_EXPORT
#endif

#endif /* CMPI_CMPIOS_H */
