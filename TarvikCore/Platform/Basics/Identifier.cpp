#include "Platform/Basics/Identifier.h"

#include <uuid/uuid.h>

namespace tarvik {

std::string newIdentifier() {
    uuid_t identifier;
    uuid_generate(identifier);
    char text[37];
    uuid_unparse_upper(identifier, text);
    return text;
}

}  // namespace tarvik
