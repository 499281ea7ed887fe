#include "druckwerk/pdf/form_import.h"

#include <map>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

namespace kvtdruck::druckwerk {

namespace {

/// Copies objects of another PDF, with all that they refer to.
class ObjectCopier {
  public:
    explicit ObjectCopier(PdfOutput& output) : output_(output) {}

    int copy(QPDFObjectHandle object) {
        const auto [entry, fresh] = numbers_.try_emplace(object.getObjGen());
        if (!fresh)
            return entry->second;
        const int number = entry->second = output_.allocate();
        if (object.isStream()) {
            QPDFObjectHandle dictionary = object.getDict();
            dictionary.removeKey("/Length");
            const std::string entries = syntaxOf(dictionary);
            const auto data = object.getRawStreamData();
            output_.writeRawStream(number, entries.substr(2, entries.size() - 4),
                                   {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()});
        } else {
            output_.writeObject(number, syntaxOf(object));
        }
        return number;
    }

  private:
    std::string syntaxOf(QPDFObjectHandle object) {
        if (object.isArray()) {
            std::string out = "[";
            for (auto& item : object.aitems())
                out += valueOf(item) + " ";
            return out + "]";
        }
        if (object.isDictionary()) {
            std::string out = "<<";
            for (const auto& [key, value] : object.ditems())
                if (key != "/Interpolate") // archives forbid it: readers do it each in a way of its own
                    out += key + " " + valueOf(value) + " ";
            return out + ">>";
        }
        return object.unparseResolved();
    }

    std::string valueOf(const QPDFObjectHandle& object) {
        return object.isIndirect() ? reference(copy(object)) : syntaxOf(object);
    }

    PdfOutput& output_;
    std::map<QPDFObjGen, int> numbers_;
};

} // namespace

std::vector<int> importPages(PdfOutput& output, const std::string& pdf) {
    QPDF pages;
    pages.setSuppressWarnings(true);
    pages.processMemoryFile("artwork", pdf.data(), pdf.size());
    ObjectCopier copier(output);
    std::vector<int> forms;
    for (auto& page : QPDFPageDocumentHelper(pages).getAllPages())
        forms.push_back(copier.copy(page.getFormXObjectForPage()));
    return forms;
}

} // namespace kvtdruck::druckwerk
