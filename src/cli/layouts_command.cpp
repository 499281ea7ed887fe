#include "cli/layouts_command.h"

#include "cli/application_folder.h"
#include "cli/layout_difference.h"
#include "cli/layout_store.h"
#include "cli/outcome.h"

namespace kvtdruck::cli {
namespace {

std::vector<std::string> differences(const LayoutStore& store, std::string_view list) {
    return differencesOf(contentOf(store.installed(list)), contentOf(store.own(list)));
}

std::string stateOf(const LayoutStore& store, std::string_view list) {
    const bool hasInstalled = std::filesystem::exists(store.installed(list));
    if (!std::filesystem::exists(store.own(list)))
        return hasInstalled ? "mitgeliefert" : "keines; die Liste wird mit einem erzeugten gedruckt";
    if (!hasInstalled)
        return "eigenes; ein mitgeliefertes gibt es nicht";
    const auto count = differences(store, list).size();
    return "eigenes, " + (count == 0   ? std::string("gleicht dem mitgelieferten")
                          : count == 1 ? std::string("1 Unterschied")
                                       : std::to_string(count) + " Unterschiede");
}

void describeAll(const LayoutStore& store, Console& console) {
    constexpr std::size_t kNameColumn = 10;
    for (const auto& report : catalog::reports()) {
        const std::string name(report.listName);
        console.notice(name + std::string(kNameColumn - name.size(), ' ') + stateOf(store, name));
    }
}

void describe(const LayoutStore& store, std::string_view list, Console& console) {
    console.notice(std::string(list) + ": " + stateOf(store, list) + "\n" + store.inUse(list).string());
    if (std::filesystem::exists(store.own(list)) && std::filesystem::exists(store.installed(list)))
        for (const auto& difference : differences(store, list))
            console.notice("  " + difference);
    for (const auto& file : store.earlier(list))
        console.notice("früher: " + file.string());
}

} // namespace

int runLayouts(const Options& options, Console& console) {
    const LayoutStore store(prepareApplicationFolder(options.folder));
    if (options.reports.empty()) {
        describeAll(store, console);
        return kDone;
    }
    const auto list = options.reports.front()->listName;
    if (options.returnsToInstalled) {
        if (!std::filesystem::exists(store.own(list)))
            refuse("Die Liste " + std::string(list) + " hat kein eigenes Layout.");
        store.returnToInstalled(list);
    } else if (options.takesBack) {
        if (store.earlier(list).empty())
            refuse("Die Liste " + std::string(list) + " hat kein früheres Layout.");
        store.takeBack(list);
    }
    describe(store, list, console);
    return kDone;
}

} // namespace kvtdruck::cli
