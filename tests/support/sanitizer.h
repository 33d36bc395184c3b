/// \file
/// Whether the address sanitizer watches this program.
#ifndef Q_MUR_TESTS_SANITIZER_H
#define Q_MUR_TESTS_SANITIZER_H

#if defined(__SANITIZE_ADDRESS__)
#define Q_MUR_TESTS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define Q_MUR_TESTS_ADDRESS_SANITIZER 1
#endif
#endif

#endif
