#include "launcherapp/shell/Prefs.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "LauncherCore/query/LearnedRank.h"
#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/LocaleFacts.h"
#include "launcherapp/shell/Uuid.h"

#include <set>
#include <utility>

namespace tessarine {

namespace {

using StoredNumbers = std::map<std::string, std::int64_t>;

constexpr HotkeyBinding commandSpace{.keyCode = VirtualKeys::space,
                                     .carbonModifiers = HotkeyModifiers::command};
constexpr HotkeyBinding commandShiftV{.keyCode = VirtualKeys::v,
                                      .carbonModifiers =
                                          HotkeyModifiers::command | HotkeyModifiers::shift};
constexpr std::int64_t usualRows = 9;
constexpr std::int64_t longestClipping = 5'000'000;
constexpr std::int64_t recentCalculations = 3;
constexpr std::string_view unhidFooter = "didUnhideFooter2026_09_10";

/// A number of the stored object that fits `T`; nothing when it is missing or does not.
template <typename T>
std::optional<T> number(const StoredNumbers& numbers, const std::string& key) {
    const auto found = numbers.find(key);
    if (found == numbers.end() || !std::in_range<T>(found->second))
        return std::nullopt;
    return static_cast<T>(found->second);
}

std::string localeCurrency(const Environment& environment) {
    return LocaleFacts::currency(environment.moneyLocale).value_or("USD");
}

std::vector<std::string> usualFolders(const Environment& environment) {
    const auto& folders = environment.userFolders;
    std::vector<std::string> usual{
        folders.downloads, folders.desktop, folders.documents, environment.home + "/Developer"};
    std::erase(usual, "");
    return usual;
}

} // namespace

DefaultsValue StoredForm<HotkeyBinding>::toStore(const HotkeyBinding& value) {
    return StoredNumbers{{"keyCode", value.keyCode}, {"carbonModifiers", value.carbonModifiers}};
}

std::optional<HotkeyBinding> StoredForm<HotkeyBinding>::fromStore(const DefaultsStore& store,
                                                                  std::string_view key) {
    const auto numbers = store.value<StoredNumbers>(key).value_or(StoredNumbers{});
    const auto keyCode = number<std::uint32_t>(numbers, "keyCode");
    const auto modifiers = number<std::uint32_t>(numbers, "carbonModifiers");
    if (!keyCode || !modifiers)
        return std::nullopt;
    return HotkeyBinding{.keyCode = *keyCode, .carbonModifiers = *modifiers};
}

DefaultsValue StoredForm<ClipRetention>::toStore(const ClipRetention& value) {
    return StoredNumbers{{"textDays", value.textDays},
                         {"fileDays", value.fileDays},
                         {"imageDays", value.imageDays},
                         {"keep", value.keep}};
}

std::optional<ClipRetention> StoredForm<ClipRetention>::fromStore(const DefaultsStore& store,
                                                                  std::string_view key) {
    const auto numbers = store.value<StoredNumbers>(key).value_or(StoredNumbers{});
    const auto text = number<std::int64_t>(numbers, "textDays");
    const auto file = number<std::int64_t>(numbers, "fileDays");
    const auto image = number<std::int64_t>(numbers, "imageDays");
    const auto keep = number<std::int64_t>(numbers, "keep");
    if (!text || !file || !image || !keep)
        return std::nullopt;
    return ClipRetention{.textDays = *text, .fileDays = *file, .imageDays = *image, .keep = *keep};
}

const Prefs::Texts& Prefs::defaultOrder() {
    static const Texts order{"answers", "apps", "people", "tabs", "commands", "files", "web"};
    return order;
}

Prefs::Prefs(DefaultsStore& store, const Environment& environment)
    : group_{.store = store, .changed = [this](std::string_view key) { observers_.tell(key); }},
      hotkey(group_, "hotkey", commandSpace), preset(group_, "preset", AppearancePreset::ink),
      lightPreset(group_, "lightPreset", AppearancePreset::paper),
      mode(group_, "mode", AppearanceMode::automatic), width(group_, "width", PanelWidth::standard),
      textScale(group_, "textScale", TextScale::regular),
      position(group_, "position", PanelPosition::upper),
      rememberedOrigin(group_, "rememberedOrigin", {}),
      resultOrder(group_, "resultOrder", defaultOrder()),
      learnFromUse(group_, "learnFromUse", true),
      settingsSyncEnabled(group_, "settingsSyncEnabled", true),
      settingsSyncHighestVersion(group_, "settingsSyncHighestVersion", 0),
      favorites(group_, "favorites", {}), favoriteTitles(group_, "favoriteTitles", {}),
      emptyMode(group_, "emptyMode", EmptyMode::clean),
      searchFolders(group_, "searchFolders", usualFolders(environment)),
      foldersOnlyRoots(group_, "foldersOnlyRoots", {}),
      indexExternalDrives(group_, "indexExternalDrives", true),
      excludedDrives(group_, "excludedDrives", {}),
      spotlightFallback(group_, "spotlightFallback", true),
      showRunningDot(group_, "showRunningDot", true), resultRows(group_, "resultRows", usualRows),
      clipRows(group_, "clipRows", 0),
      clipPreviewPlacement(group_, "clipPreviewPlacement", ClipPreviewPlacement::right),
      extraAppFolders(group_, "extraAppFolders", {}),
      tookHotkeyDeliberately(group_, "tookHotkeyDeliberately", false),
      clipboardEnabled(group_, "clipboardEnabled", true),
      clipRetention(group_, "clipRetention", {}), clipSyncEnabled(group_, "clipSyncEnabled", false),
      clipSyncDeviceID(group_, "clipSyncDeviceID", {}),
      clipSyncLamport(group_, "clipSyncLamport", 0),
      clipSyncLastSync(group_, "clipSyncLastSync", 0),
      clipSyncHighestVersion(group_, "clipSyncHighestVersion", 0),
      clipMaxCharacters(group_, "clipMaxCharacters", longestClipping),
      clipMoveToTopOnUse(group_, "clipMoveToTopOnUse", true),
      contactPhotosInResults(group_, "contactPhotosInResults", false),
      clipAutoPaste(group_, "clipAutoPaste", true), clipIgnoredApps(group_, "clipIgnoredApps", {}),
      clipHistoryFilePath(group_, "clipHistoryFilePath", {}),
      clipGroupsFilePath(group_, "clipGroupsFilePath", {}),
      clipPasteTrackingSince(group_, "clipPasteTrackingSince", 0),
      ignoreRemoteClipboard(group_, "ignoreRemoteClipboard", false),
      ignoreRemoteClipboardFiles(group_, "ignoreRemoteClipboardFiles", true),
      ignoreRemoteClipboardImages(group_, "ignoreRemoteClipboardImages", true),
      hiddenApps(group_, "hiddenApps", {}), commandsFilePath(group_, "commandsFilePath", {}),
      gmailChromeProfile(group_, "gmailChromeProfile", "Default"),
      clipboardHotkey(group_, "clipboardHotkey", commandShiftV),
      voiceHotkey(group_, "voiceHotkey", {}), voiceEnabled(group_, "voiceEnabled", true),
      autoHideFooter(group_, "autoHideFooter", false), companionLinks(group_, "companionLinks", {}),
      angleMode(group_, "angleMode", Calc::AngleMode::degrees),
      calcHistoryEnabled(group_, "calcHistoryEnabled", true),
      calcShowRecent(group_, "calcShowRecent", true),
      zonesFollowPerchbar(group_, "zonesFollowPerchbar", true),
      timeHomeFollowsMac(group_, "timeHomeFollowsMac", false), timeHome(group_, "timeHome", {}),
      calcRecentRows(group_, "calcRecentRows", recentCalculations),
      homeCurrency(group_, "homeCurrency", localeCurrency(environment)),
      favoriteCurrencies(group_, "favoriteCurrencies", {localeCurrency(environment)}),
      rateSource(group_, "rateSource", RateSource::ecb),
      ecbRatesAddress(group_, "ecbRatesAddress", {}),
      openRatesAddress(group_, "openRatesAddress", {}),
      measureSystem(group_, "measureSystem", MeasureSystem::usCustomary),
      builtinKeywordWords(group_, "builtinKeywordWords", {}),
      builtinKeywordsDisabled(group_, "builtinKeywordsDisabled", {}) {
    resultOrder.readAs(
        [](const Texts& stored) { return LearnedRank::mergeOrder(stored, defaultOrder()); });
    favorites.readAs([](const Texts& stored) {
        return UsageLog::renamingFavorites(stored, UsageLog::renamedIDs());
    });
    readKeywords();
    edits_ = store.onEdit([this](const Texts& keys) { edited(keys); });
    if (clipSyncDeviceID().empty())
        clipSyncDeviceID.set(randomUuid());
    if (!store.value<bool>(unhidFooter)) {
        autoHideFooter.set(false);
        store.set(unhidFooter, true);
    }
}

Subscription Prefs::onChange(std::function<void(std::string_view)> changed) {
    return observers_.add(std::move(changed));
}

std::optional<std::string> Prefs::setKeywordWord(BuiltinKeyword keyword, std::string_view word) {
    auto refusal = keywords_.setWord(keyword, word);
    if (!refusal)
        builtinKeywordWords.set(keywords_.words());
    return refusal;
}

void Prefs::enableKeyword(BuiltinKeyword keyword) {
    keywords_.enable(keyword);
    storeDisabledKeywords();
}

void Prefs::disableKeyword(BuiltinKeyword keyword) {
    keywords_.disable(keyword);
    storeDisabledKeywords();
}

void Prefs::readKeywords() {
    keywords_ = Keywords(builtinKeywordWords(),
                         {builtinKeywordsDisabled().begin(), builtinKeywordsDisabled().end()});
}

/// All are read before any is told: whoever is told of one setting may read another.
void Prefs::edited(const Texts& keys) {
    std::vector<std::string_view> changed;
    for (const auto& key : keys) {
        const auto found = group_.rereads.find(key);
        if (found != group_.rereads.end() && found->second())
            changed.push_back(found->first);
    }
    readKeywords();
    if (clipSyncDeviceID().empty())
        clipSyncDeviceID.set(randomUuid());
    for (const auto key : changed)
        observers_.tell(key);
}

void Prefs::storeDisabledKeywords() {
    builtinKeywordsDisabled.set({keywords_.disabled().begin(), keywords_.disabled().end()});
}

} // namespace tessarine
