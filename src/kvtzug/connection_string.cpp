#include "kvtzug/connection_string.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kvtdruck {
namespace {

struct Attribute {
    String name;
    String value;
};

char16_t lower(char16_t letter) {
    return letter >= u'A' && letter <= u'Z' ? char16_t(letter - u'A' + u'a') : letter;
}

/// Takes everything up to `end` from the front of `text`, and `end` with it.
StringView taken(StringView& text, char16_t end) {
    const auto at = std::min(text.find(end), text.size());
    const auto front = text.substr(0, at);
    text.remove_prefix(std::min(at + 1, text.size()));
    return front;
}

/// Takes a value in braces, whose opening brace is gone already.
String takenBraced(StringView& text) {
    String value(taken(text, u'}'));
    while (!text.empty() && text.front() == u'}') {
        text.remove_prefix(1);
        value.append(u"}").append(taken(text, u'}'));
    }
    return value;
}

std::vector<Attribute> attributes(StringView text) {
    std::vector<Attribute> result;
    while (!text.empty()) {
        if (text.find(u'=') > text.find(u';')) { // no attribute
            taken(text, u';');
            continue;
        }
        Attribute attribute{String(trimmed(taken(text, u'='))), {}};
        text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
        if (!text.empty() && text.front() == u'{') {
            text.remove_prefix(1);
            attribute.value = takenBraced(text);
            taken(text, u';');
        } else {
            attribute.value = trimmed(taken(text, u';'));
        }
        result.push_back(std::move(attribute));
    }
    return result;
}

bool isNamed(const Attribute& attribute, StringView name) {
    return std::ranges::equal(attribute.name, name, {}, lower, lower);
}

void mask(String& message, StringView secret) {
    for (auto at = message.find(secret); at != String::npos; at = message.find(secret, at + 3))
        message.replace(at, secret.size(), u"***");
}

} // namespace

String connectionAttribute(StringView connectionString, StringView name) {
    for (auto& attribute : attributes(connectionString))
        if (isNamed(attribute, name))
            return std::move(attribute.value);
    return {};
}

String braced(StringView value) {
    String result = u"{";
    for (const auto letter : value)
        result.append(letter == u'}' ? 2 : 1, letter);
    return result + u"}";
}

String withoutPasswords(String message, StringView connectionString) {
    for (const auto& attribute : attributes(connectionString)) {
        if (attribute.value.empty() || !(isNamed(attribute, u"PWD") || isNamed(attribute, u"Password")))
            continue;
        mask(message, braced(attribute.value));
        mask(message, attribute.value);
    }
    return message;
}

} // namespace kvtdruck
