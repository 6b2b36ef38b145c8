#pragma once

// ENCAP_API marks what a shared build of the library exports; everything else is hidden.
#if defined(ENCAP_STATIC)
#define ENCAP_API
#elif defined(_WIN32) && defined(ENCAP_BUILDING)
#define ENCAP_API __declspec(dllexport)
#elif defined(_WIN32)
#define ENCAP_API __declspec(dllimport)
#else
#define ENCAP_API __attribute__((visibility("default")))
#endif
