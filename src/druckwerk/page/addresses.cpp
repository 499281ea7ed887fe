#include "druckwerk/page/addresses.h"

#include <algorithm>
#include <array>

namespace kvtdruck::druckwerk {

namespace {

bool isAlphanumeric(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

/// What a URI may hold (RFC 3986, 2.2 and 2.3), and the sign that it escapes with.
bool isUriCharacter(char16_t c) {
    return isAlphanumeric(c) || StringView(u"-._~:/?#[]@!$&'()*+,;=%").find(c) != StringView::npos;
}

std::string ascii(StringView text) {
    return {text.begin(), text.end()};
}

/// Names with dots between them, the last one of at least two letters.
bool isHost(StringView host) {
    const auto dot = host.rfind(u'.');
    const auto letter = [](char16_t c) { return isAlphanumeric(c) && c > u'9'; };
    return dot != StringView::npos && dot > 0 && host.front() != u'.' && host.find(u"..") == StringView::npos &&
           host.size() - dot > 2 && std::ranges::all_of(host.substr(dot + 1), letter) &&
           std::ranges::all_of(host, [](char16_t c) { return isAlphanumeric(c) || c == u'-' || c == u'.'; });
}

bool startsLike(StringView word, StringView lowerCase) {
    return word.size() > lowerCase.size() &&
           std::ranges::equal(word.substr(0, lowerCase.size()), lowerCase, {},
                              [](char16_t c) { return c >= u'A' && c <= u'Z' ? c + 32 : c; });
}

/// The URI that `word` is; empty where it is none.
std::string uriOf(StringView word) {
    for (const StringView scheme : {u"https://", u"http://", u"www."})
        if (startsLike(word, scheme)) {
            const auto begin = scheme.back() == u'/' ? scheme.size() : 0;
            const StringView host = word.substr(begin, word.find_first_of(u"/?#:", begin) - begin);
            return isHost(host) ? (begin == 0 ? "http://" : "") + ascii(word) : "";
        }
    const auto at = word.find(u'@');
    if (at == StringView::npos || at == 0 || !isHost(word.substr(at + 1)))
        return {};
    const auto named = [](char16_t c) {
        return isAlphanumeric(c) || StringView(u"._+-").find(c) != StringView::npos;
    };
    return std::ranges::all_of(word.substr(0, at), named) ? "mailto:" + ascii(word) : "";
}

} // namespace

std::vector<Address> addressesIn(StringView text) {
    std::vector<Address> found;
    if (std::ranges::none_of(text, [](char16_t c) { return c == u'.'; })) // as most texts of a report
        return found;
    for (std::size_t begin = 0; begin < text.size();) {
        if (!isAlphanumeric(text[begin])) {
            ++begin;
            continue;
        }
        std::size_t end = begin;
        while (end < text.size() && isUriCharacter(text[end]))
            ++end;
        const bool cutOff = end < text.size() && text[end] > 0x7F && text[end] != u'\u00A0';
        const std::size_t next = end;
        while (end > begin && StringView(u".,;:!?)]'").find(text[end - 1]) != StringView::npos)
            --end; // the sentence around it goes on there
        if (std::string uri = cutOff ? "" : uriOf(text.substr(begin, end - begin)); !uri.empty())
            found.push_back({begin, end, std::move(uri)});
        begin = next;
    }
    return found;
}

} // namespace kvtdruck::druckwerk
