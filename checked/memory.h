/// \file
/// What is known of the memory that calls are handed: what the host has told, what the library itself has allocated,
/// and what the heap says.
#ifndef Q_MUR_CHECKED_MEMORY_H
#define Q_MUR_CHECKED_MEMORY_H

#include <cstddef>
#include <optional>
#include <span>

namespace checked {

struct Piece {
    std::byte *begin = nullptr;
    std::size_t bytes = 0;
    const void *first = nullptr; ///< the pixel by which the host told of it, the last row's of one stored bottom-up
    int pitch = 0;               ///< of a surface that was told, in pixels; 0 where a piece has no rows
    int width = 0;               ///< of its rows, in pixels; 0 for the whole pitch
    bool isReadOnly = false;

    std::byte *end() const { return begin + bytes; }
};

/// Keeps a piece in mind instead of what was known of its memory.
void remember(const Piece &piece);

/// Forgets all pieces that begin within these bytes.
void forget(const void *begin, std::size_t bytes);

/// Forgets the piece of which the host told by this pixel.
void forgetTold(const void *first);

/// A piece that a call is handed, by the pointer that leads into it.
struct Lent {
    static constexpr int noArgument = -1;
    static constexpr int kept[] = {-2, -3, -4}; ///< what a region's block holds: destination, test surface and plane

    const void *pointer = nullptr;
    Piece piece;
    int argument = noArgument; ///< which one it is handed as
};

/// Pieces that only this thread knows, as long as this stands; they come before all others.
class Lending {
public:
    explicit Lending(std::span<const Lent> pieces);
    ~Lending();
    Lending(const Lending &) = delete;
    Lending &operator=(const Lending &) = delete;
};

/// The piece that a pointer leads into. Pieces of several arguments may begin at one address.
std::optional<Piece> pieceAt(const void *pointer, int argument = Lent::noArgument);

} // namespace checked

#endif
