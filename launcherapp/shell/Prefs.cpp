#include "launcherapp/shell/Prefs.h"

#include "LauncherCore/query/LearnedRank.h"
#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/LocaleFacts.h"
#include "launcherapp/shell/Uuid.h"

#include <set>
#include <utility>

namespace tessarine {

namespace {

using StoredNumbers = std::map<std::string, std::int64_t>;

// Virtual key codes and modifiers of the chords that come with the program.
constexpr HotkeyBinding commandSpace{.keyCode = 49, .carbonModifiers = 0x100};
constexpr HotkeyBinding commandShiftV{.keyCode = 9, .carbonModifiers = 0x300};
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
    : changed_([this](std::string_view key) { observers_.tell(key); }),
      hotkey(store, "hotkey", commandSpace, changed_),
      preset(store, "preset", AppearancePreset::ink, changed_),
      lightPreset(store, "lightPreset", AppearancePreset::paper, changed_),
      mode(store, "mode", AppearanceMode::automatic, changed_),
      width(store, "width", PanelWidth::standard, changed_),
      textScale(store, "textScale", TextScale::regular, changed_),
      position(store, "position", PanelPosition::upper, changed_),
      rememberedOrigin(store, "rememberedOrigin", {}, changed_),
      resultOrder(store, "resultOrder", defaultOrder(), changed_),
      learnFromUse(store, "learnFromUse", true, changed_),
      settingsSyncEnabled(store, "settingsSyncEnabled", true, changed_),
      settingsSyncHighestVersion(store, "settingsSyncHighestVersion", 0, changed_),
      favorites(store, "favorites", {}, changed_),
      favoriteTitles(store, "favoriteTitles", {}, changed_),
      emptyMode(store, "emptyMode", EmptyMode::clean, changed_),
      searchFolders(store, "searchFolders", usualFolders(environment), changed_),
      foldersOnlyRoots(store, "foldersOnlyRoots", {}, changed_),
      indexExternalDrives(store, "indexExternalDrives", true, changed_),
      excludedDrives(store, "excludedDrives", {}, changed_),
      spotlightFallback(store, "spotlightFallback", true, changed_),
      showRunningDot(store, "showRunningDot", true, changed_),
      resultRows(store, "resultRows", usualRows, changed_),
      clipRows(store, "clipRows", 0, changed_),
      clipPreviewPlacement(store, "clipPreviewPlacement", ClipPreviewPlacement::right, changed_),
      extraAppFolders(store, "extraAppFolders", {}, changed_),
      tookHotkeyDeliberately(store, "tookHotkeyDeliberately", false, changed_),
      clipboardEnabled(store, "clipboardEnabled", true, changed_),
      clipRetention(store, "clipRetention", {}, changed_),
      clipSyncEnabled(store, "clipSyncEnabled", false, changed_),
      clipSyncDeviceID(store, "clipSyncDeviceID", {}, changed_),
      clipSyncLamport(store, "clipSyncLamport", 0, changed_),
      clipSyncLastSync(store, "clipSyncLastSync", 0, changed_),
      clipSyncHighestVersion(store, "clipSyncHighestVersion", 0, changed_),
      clipMaxCharacters(store, "clipMaxCharacters", longestClipping, changed_),
      clipMoveToTopOnUse(store, "clipMoveToTopOnUse", true, changed_),
      contactPhotosInResults(store, "contactPhotosInResults", false, changed_),
      clipAutoPaste(store, "clipAutoPaste", true, changed_),
      clipIgnoredApps(store, "clipIgnoredApps", {}, changed_),
      ignoreRemoteClipboard(store, "ignoreRemoteClipboard", false, changed_),
      ignoreRemoteClipboardFiles(store, "ignoreRemoteClipboardFiles", true, changed_),
      ignoreRemoteClipboardImages(store, "ignoreRemoteClipboardImages", true, changed_),
      hiddenApps(store, "hiddenApps", {}, changed_),
      commandsFilePath(store, "commandsFilePath", {}, changed_),
      gmailChromeProfile(store, "gmailChromeProfile", "Default", changed_),
      clipboardHotkey(store, "clipboardHotkey", commandShiftV, changed_),
      voiceHotkey(store, "voiceHotkey", {}, changed_),
      voiceEnabled(store, "voiceEnabled", true, changed_),
      autoHideFooter(store, "autoHideFooter", false, changed_),
      companionLinks(store, "companionLinks", {}, changed_),
      angleMode(store, "angleMode", Calc::AngleMode::degrees, changed_),
      calcHistoryEnabled(store, "calcHistoryEnabled", true, changed_),
      calcShowRecent(store, "calcShowRecent", true, changed_),
      zonesFollowPerchbar(store, "zonesFollowPerchbar", true, changed_),
      timeHomeFollowsMac(store, "timeHomeFollowsMac", false, changed_),
      timeHome(store, "timeHome", {}, changed_),
      calcRecentRows(store, "calcRecentRows", recentCalculations, changed_),
      homeCurrency(store, "homeCurrency", localeCurrency(environment), changed_),
      favoriteCurrencies(store, "favoriteCurrencies", {localeCurrency(environment)}, changed_),
      rateSource(store, "rateSource", RateSource::ecb, changed_),
      ecbRatesAddress(store, "ecbRatesAddress", {}, changed_),
      openRatesAddress(store, "openRatesAddress", {}, changed_),
      measureSystem(store, "measureSystem", MeasureSystem::usCustomary, changed_),
      builtinKeywordWords(store, "builtinKeywordWords", {}, changed_),
      builtinKeywordsDisabled(store, "builtinKeywordsDisabled", {}, changed_),
      keywords_(builtinKeywordWords(),
                {builtinKeywordsDisabled().begin(), builtinKeywordsDisabled().end()}) {
    resultOrder.reinterpret(LearnedRank::mergeOrder(resultOrder(), defaultOrder()));
    favorites.reinterpret(UsageLog::renamingFavorites(favorites(), UsageLog::renamedIDs()));
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

void Prefs::storeDisabledKeywords() {
    builtinKeywordsDisabled.set({keywords_.disabled().begin(), keywords_.disabled().end()});
}

} // namespace tessarine
