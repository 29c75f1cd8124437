#ifndef VEXAKIT_EXPORT_H
#define VEXAKIT_EXPORT_H

/**
 * `VEXA_API` marks what the shared library exports.
 *
 * The library's own build defines `VEXAKIT_BUILDING`; code that links the library's objects
 * straight into a program defines `VEXAKIT_STATIC`; everybody else defines nothing.
 */
#if defined(VEXAKIT_STATIC)
#define VEXA_API
#elif defined(_WIN32)
#if defined(VEXAKIT_BUILDING)
#define VEXA_API __declspec(dllexport)
#else
#define VEXA_API __declspec(dllimport)
#endif
#else
#define VEXA_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define VEXA_BEGIN_DECLS extern "C" {
#define VEXA_END_DECLS }
#else
#define VEXA_BEGIN_DECLS
#define VEXA_END_DECLS
#endif

#endif
