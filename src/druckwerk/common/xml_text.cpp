#include "druckwerk/common/xml_text.h"

#include "values/code_points.h"

namespace kvtdruck::druckwerk {

std::string xmlText(StringView text) {
    String out;
    for (const char16_t c : wellFormed(text)) {
        if (c == u'&')
            out += u"&amp;";
        else if (c == u'<')
            out += u"&lt;";
        else if (c == u'>')
            out += u"&gt;";
        else if (c == u'\r')
            out += u"&#13;";
        else if ((c < 0x20 && c != u'\t' && c != u'\n') || c >= 0xFFFE)
            out += u'\xFFFD';
        else
            out += c;
    }
    return toUtf8(out);
}

} // namespace kvtdruck::druckwerk
