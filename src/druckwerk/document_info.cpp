#include "druckwerk/document_info.h"

#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {

DocumentInfo documentInfo(const Options& options, const String& heading, const String& company,
                          const String& list) {
    const String period = fromUtf8(options.period);
    const String selection = fromUtf8(options.selection);
    const PrintDate& date = options.printDate;
    std::array<char, 48> printed{};
    std::snprintf(printed.data(), printed.size(), "gedruckt am %02d.%02d.%04d um %02d:%02d", date.day, date.month,
                  date.year, date.hour, date.minute);
    DocumentInfo info;
    info.title = heading + (period.empty() ? u"" : u" " + period) + (company.empty() ? u"" : u" – " + company);
    info.author = company;
    info.subject = (selection.empty() ? u"" : selection + u"; ") + fromUtf8(printed.data());
    info.creator = fromUtf8(options.creator);
    info.keywords = {heading, list == heading ? u"" : list, company, period};
    info.date = date;
    return info;
}

} // namespace kvtdruck::druckwerk
