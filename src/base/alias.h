/// \file
/// Further names of one body.
#ifndef Q_MUR_BASE_ALIAS_H
#define Q_MUR_BASE_ALIAS_H

/// Makes a declared function another name of `body`, an extern "C" function defined in the same file. The signatures
/// may differ as far as they pass alike at the interface. On WebAssembly that is not far, since every call is held
/// against the signature: only types that are the same there may differ, as pointers and references do.
#define Q_MUR_ALIAS_OF(body) __attribute__((alias(#body)))

// The signatures differ on purpose: a reference passes as a pointer does.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wattribute-alias"
#endif

#endif
