#pragma once

#include "LauncherCore/answers/Calc.h"
#include "LauncherCore/answers/MeasureSystem.h"
#include "LauncherCore/answers/RateSource.h"
#include "LauncherCore/query/Keywords.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/Preference.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

enum class AppearancePreset {
    ink,
    violet,
    graphite,
    midnight,
    forest,
    ember,
    nocturne,
    paper,
    linen,
    snow,
    sand,
    mint,
    rose
};
enum class AppearanceMode { automatic, light, dark };
enum class PanelWidth { compact, standard, wide };
enum class TextScale { regular, large };
enum class PanelPosition { center, upper, remembered };
enum class EmptyMode { clean, recents, mostUsed };
enum class ClipPreviewPlacement { right, left, below };

template <> struct StoredNames<AppearancePreset> {
    static constexpr auto names = std::to_array<std::string_view>({
        "ink",
        "violet",
        "graphite",
        "midnight",
        "forest",
        "ember",
        "nocturne",
        "paper",
        "linen",
        "snow",
        "sand",
        "mint",
        "rose",
    });
};

template <> struct StoredNames<AppearanceMode> {
    static constexpr auto names = std::to_array<std::string_view>({"auto", "light", "dark"});
};

template <> struct StoredNames<PanelWidth> {
    static constexpr auto names = std::to_array<std::string_view>({"compact", "standard", "wide"});
};

template <> struct StoredNames<TextScale> {
    static constexpr auto names = std::to_array<std::string_view>({"regular", "large"});
};

template <> struct StoredNames<PanelPosition> {
    static constexpr auto names =
        std::to_array<std::string_view>({"center", "upper", "remembered"});
};

template <> struct StoredNames<EmptyMode> {
    static constexpr auto names = std::to_array<std::string_view>({"clean", "recents", "mostUsed"});
};

template <> struct StoredNames<RateSource> {
    static constexpr auto names = std::to_array<std::string_view>({"ecb", "open"});
};

template <> struct StoredNames<ClipPreviewPlacement> {
    static constexpr auto names = std::to_array<std::string_view>({"right", "left", "below"});
};

template <> struct StoredNames<Calc::AngleMode> {
    static constexpr auto names = std::to_array<std::string_view>({"degrees", "radians"});
};

template <> struct StoredNames<MeasureSystem> {
    static constexpr auto names =
        std::to_array<std::string_view>({"usCustomary", "imperial", "metric"});
};

/// All settings, each under the key of its name. Main thread only.
class Prefs {
    // First, as every setting below reads and reports through them.
private:
    Observers<std::string_view> observers_;
    PreferenceGroup group_;

public:
    using Texts = std::vector<std::string>;

    /// The order of result groups of somebody who never changed it.
    static const Texts& defaultOrder();

    /// Reads every key, in the order below. Nothing is written, but for a new device's id and the
    /// marks of one-off changes.
    Prefs(DefaultsStore& store, const Environment& environment);
    Prefs(const Prefs&) = delete;
    Prefs& operator=(const Prefs&) = delete;

    /// Calls `changed` with the key of each setting that is set, here or by an edit of the file.
    Subscription onChange(std::function<void(std::string_view key)> changed);

    Preference<HotkeyBinding> hotkey;
    Preference<AppearancePreset> preset;
    Preference<AppearancePreset> lightPreset;
    Preference<AppearanceMode> mode;
    Preference<PanelWidth> width;
    Preference<TextScale> textScale;
    Preference<PanelPosition> position;
    Preference<std::vector<double>> rememberedOrigin; ///< x and y in points; empty: none yet
    Preference<Texts> resultOrder;                    ///< group names; every known group once
    Preference<bool> learnFromUse;
    Preference<bool> settingsSyncEnabled;
    Preference<std::int64_t> settingsSyncHighestVersion;
    Preference<Texts> favorites;                                   ///< row ids, in their order
    Preference<std::map<std::string, std::string>> favoriteTitles; ///< row id to title last seen
    Preference<EmptyMode> emptyMode;
    Preference<Texts> searchFolders;
    Preference<Texts> foldersOnlyRoots;
    Preference<bool> indexExternalDrives;
    Preference<Texts> excludedDrives;
    Preference<bool> spotlightFallback;
    Preference<bool> showRunningDot;
    Preference<std::int64_t> resultRows;
    Preference<std::int64_t> clipRows; ///< 0: as many as `resultRows`
    Preference<ClipPreviewPlacement> clipPreviewPlacement;
    Preference<Texts> extraAppFolders;
    Preference<bool> tookHotkeyDeliberately;
    Preference<bool> clipboardEnabled;
    Preference<ClipRetention> clipRetention;
    Preference<bool> clipSyncEnabled;
    Preference<std::string> clipSyncDeviceID;
    Preference<std::int64_t> clipSyncLamport;
    Preference<double> clipSyncLastSync; ///< seconds since 1970, UTC
    Preference<std::int64_t> clipSyncHighestVersion;
    Preference<std::int64_t> clipMaxCharacters;
    Preference<bool> clipMoveToTopOnUse;
    Preference<bool> contactPhotosInResults;
    Preference<bool> clipAutoPaste;
    Preference<Texts> clipIgnoredApps;
    Preference<std::string> clipHistoryFilePath; ///< empty: the one in the support folder
    Preference<std::string> clipGroupsFilePath;  ///< likewise
    /// Seconds since 1970, UTC, from which on each paste of a clipping is marked; 0: not known.
    Preference<double> clipPasteTrackingSince;
    Preference<bool> ignoreRemoteClipboard;
    Preference<bool> ignoreRemoteClipboardFiles;
    Preference<bool> ignoreRemoteClipboardImages;
    Preference<Texts> hiddenApps;             ///< application ids
    Preference<std::string> commandsFilePath; ///< empty: the one in the support folder
    Preference<std::string> gmailChromeProfile;
    Preference<HotkeyBinding> clipboardHotkey;
    Preference<HotkeyBinding> voiceHotkey; ///< no key and no modifiers: none
    Preference<bool> voiceEnabled;
    Preference<bool> autoHideFooter;
    Preference<std::map<std::string, bool>> companionLinks;
    Preference<Calc::AngleMode> angleMode;
    Preference<bool> calcHistoryEnabled;
    Preference<bool> calcShowRecent;
    Preference<bool> zonesFollowPerchbar;
    Preference<bool> timeHomeFollowsMac;
    Preference<std::string> timeHome; ///< an IANA zone; empty until the first start
    Preference<std::int64_t> calcRecentRows;
    Preference<std::string> homeCurrency; ///< an ISO 4217 code
    Preference<Texts> favoriteCurrencies;
    Preference<RateSource> rateSource;
    Preference<std::string> ecbRatesAddress;  ///< scheme and host; empty: the program's own
    Preference<std::string> openRatesAddress; ///< likewise
    Preference<MeasureSystem> measureSystem;
    Preference<std::map<std::string, std::string>> builtinKeywordWords;
    Preference<Texts> builtinKeywordsDisabled;

    /// The keywords in force, read once and kept in step with the two settings above.
    const Keywords& keywords() const { return keywords_; }

    /// Nothing on success, else why the word stays as it was.
    std::optional<std::string> setKeywordWord(BuiltinKeyword keyword, std::string_view word);
    void enableKeyword(BuiltinKeyword keyword);
    void disableKeyword(BuiltinKeyword keyword);

private:
    void storeDisabledKeywords();
    void readKeywords();
    void edited(const Texts& keys);

    Keywords keywords_;
    Subscription edits_;
};

} // namespace tessarine
