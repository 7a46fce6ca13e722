// Owned zero-terminated byte strings: every text that is handed to the node model
// is one of these, and its ownership passes to the node.
#pragma once
#include <cstddef>
#include <string_view>

namespace regmill {

// A heap copy of `length` bytes from `text`, with a terminating zero; free it with
// freeXmlString unless a node takes it over.
char* copyXmlString(const char* text, size_t length);
char* copyXmlString(std::string_view text);
void freeXmlString(char* text);

}  // namespace regmill
