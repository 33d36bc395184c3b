/// \file
/// What the checked library offers besides the functions themselves. It is a library of its own, of the same names,
/// that a program loads in place of the usual one; docs/checked.md says how. None of this is needed.
#ifndef Q_MUR_CHECKED_H
#define Q_MUR_CHECKED_H

/// Marks what the checked library exports.
#if defined(_WIN32)
#define Q_MUR_CHECKED_API
#else
#define Q_MUR_CHECKED_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Receives a message, without a line's end.
typedef void (*q_Mur_checked_handler)(const char *message, void *context);

/// Tells of a surface: its first pixel, as it is handed to the library, its pitch in pixels, below 0 for one that is
/// stored bottom-up, and its rows. Calls on pointers into it are held to it until it is told otherwise: to another
/// pitch or height, or, by the same pixel, to a height of 0, which forgets it. Where a picture has margins, tell of the
/// first pixel of these. Memory that has no rows is a single one.
Q_MUR_CHECKED_API void q_Mur_checked_surface(const void *pixels, int pitch, int height);

/// Has the program go on after so many messages and end at the next one; below 0 it never ends. A call that breaks its
/// contract is left out then and answers 0.
Q_MUR_CHECKED_API void q_Mur_checked_go_on(int messages);

/// Hands messages over instead of printing them; then nothing ends the program but the handler. Null prints again.
Q_MUR_CHECKED_API void q_Mur_checked_handle(q_Mur_checked_handler handler, void *context);

/// Whether numbers are named that keep to the contract but make no sense, such as an alpha of 2. They are, unless this
/// says 0.
Q_MUR_CHECKED_API void q_Mur_checked_doubts(int areNamed);

#ifdef __cplusplus
}
#endif

#endif
