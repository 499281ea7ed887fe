// One print job: lines onto pages, with the bands that belong around them.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/page/chart_drawing.h"
#include "druckwerk/page/sampler.h"
#include "druckwerk/page/text_setter.h"
#include "druckwerk/structure/job_structure.h"

#include <memory>

namespace kvtdruck::druckwerk {

class PrintJob {
  public:
    /// The layout must be one that may be printed. The job's pages go behind those that `document` has; `bookmark`
    /// are the entries of the outline around its own, outermost first. Both `document` and `definitions` outlive
    /// the job.
    PrintJob(Layout layout, Definitions& definitions, PdfDocument& document,
             const std::filesystem::path& layoutFolder, std::vector<String> bookmark, const PrintDate& date,
             FontLibrary::Warn warn, TightFieldSink tight = {}, SampleSink sampled = {});
    PrintJob(const PrintJob&) = delete;
    PrintJob& operator=(const PrintJob&) = delete;
    /// A job that has not come to its end takes its pages out again.
    ~PrintJob();

    /// Closes the page in hand and begins the next.
    void beginPage();
    /// Prints the values that are defined as one line; false where the page is full and nothing was printed.
    bool printLine();
    /// Prints what closes the table, on a new page where it has to.
    void closeTable();
    /// Closes the page in hand: the job's pages stay. Where the layout has put nothing into the outline, `heading`
    /// is their entry.
    void finish(const String& heading);

    int pages() const { return document_.pages(); }

  private:
    Measure measure();
    Scene scene(Moment moment) const;

    bool printSheet();
    std::size_t firstBrokenGroup() const;
    bool closeGroups(std::size_t level);
    void leaveGroup();
    void openGroups();
    void repeatGroupHeads();
    bool wantsNewPage(std::size_t brokenGroup) const;
    double heightOfHeads(bool freshPage) const;
    double reserve() const;
    void drawRow(double growth);
    void takeLineIntoAccount();

    void bindPage(bool withLine);
    void closePage();
    bool holds(const Band& band, Moment moment) const;
    /// Prints a flowing band at the current height.
    void flow(const Band& band, Moment moment, double growth);
    double growthOf(const Band& band, Moment moment);
    enum class Pass : std::uint8_t { All, Early, Late };
    void draw(const Band& band, Moment moment, double down, double growth = 0, Pass pass = Pass::All);
    void drawItem(const Item& item, const Band& band, const Scene& scene, double down, double growth);
    /// Tells the structure, where there is one, that the item is drawn now.
    void show(const Item& item, StringView text = {}, double down = 0);
    void addBookmark(const Band& band, const Scene& scene, double y);

    const Layout layout_;
    Totals totals_;
    Definitions& definitions_;
    FontLibrary::Warn warn_;
    Date printDate_;
    PdfDocument& document_;
    std::vector<String> bookmark_;
    PdfDocument::Mark begin_;
    bool finished_ = false;
    std::size_t firstForm_ = 0;
    TextSetter setter_;
    std::unique_ptr<JobStructure> structure_; ///< where the document has one
    std::vector<ChartPoints> points_;         ///< what lines have given to the layout's charts of lines
    SampleSink sampled_;
    std::optional<Sampler> sampler_; ///< where somebody asks for what is shown
    const double top_;
    const double bottom_;

    bool pageOpen_ = false;
    bool pageBound_ = false;
    bool pageFull_ = false;  ///< the caller was told so
    bool carries_ = false;   ///< the table goes on behind the page in hand
    bool carriedIn_ = false; ///< it has come from the page before
    bool tableClosed_ = false;
    double y_ = 0;
    std::int64_t pageLines_ = 0;
    std::int64_t tableLines_ = 0;
    std::size_t openGroups_ = 0;
    String text_;
};

} // namespace kvtdruck::druckwerk
