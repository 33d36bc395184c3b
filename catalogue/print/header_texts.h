/// \file
/// The texts that stand above the declarations in the public headers.
#ifndef Q_MUR_CATALOGUE_HEADER_TEXTS_H
#define Q_MUR_CATALOGUE_HEADER_TEXTS_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace catalogue {

/// What a header says of one declaration.
struct HeaderText {
    std::string text;        ///< the comment's lines without their slashes
    std::string declaration; ///< on one line, without what exports it
    std::string group;       ///< the section that it stands in
    std::string groupText;   ///< what is common to the section
};

struct Header {
    std::string about;                                    ///< what its first comment says
    std::map<std::string, std::vector<HeaderText>> texts; ///< by the names of functions; overloads in their order
};

/// The types of a declaration's parameters and of its result, as they are written there.
std::vector<std::string> parameterTypes(const std::string &declaration);
std::string resultType(const std::string &declaration);

Header readHeader(const std::filesystem::path &file);

} // namespace catalogue

#endif
