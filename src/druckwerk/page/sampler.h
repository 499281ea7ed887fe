// What a print shows of its layout, taken while it prints: of each band what its first printing shows, of bands
// that were not printed what they would show at the end.
#pragma once

#include "druckwerk/layout/layout_sample.h"
#include "druckwerk/page/chart_drawing.h"

#include <set>

namespace kvtdruck::druckwerk {

class Sampler {
  public:
    /// `points` are those of the layout's charts of lines. All outlive the sampler.
    Sampler(const Layout& layout, const std::vector<ChartPoints>& points, TextSetter& setter)
        : layout_(layout), points_(points), setter_(setter) {}

    /// Takes what `band` shows of `scene`, unless it was taken before; of a band in two parts the items that are
    /// `late`, or the others.
    void take(const Band& band, const Scene& scene, std::optional<bool> late = {});
    /// Takes the bands that were not printed; gives the sample of a document of so many `pages`.
    const LayoutSample& finish(const Scene& scene, int pages);

  private:
    void takeItem(const Item& item, const Scene& scene);
    void takeText(const TextItem& item, const Scene& scene);
    std::string drawingOf(const Chart& chart, const Scene& scene);

    const Layout& layout_;
    const std::vector<ChartPoints>& points_;
    TextSetter& setter_;
    LayoutSample sample_;
    std::set<const Item*> taken_; ///< what needs no further look
};

} // namespace kvtdruck::druckwerk
