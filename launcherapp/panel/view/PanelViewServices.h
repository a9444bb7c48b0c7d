#pragma once

namespace tessarine {

class AppCatalog;
class Appearance;
class CreditResolver;
class DesktopAppearance;
class Icons;
class Prefs;
class SearchModel;

/// What the panel's view reads and draws with. The references outlive it.
struct PanelViewServices {
    SearchModel& model;
    Prefs& prefs;
    Appearance& appearance;
    DesktopAppearance& desktop;
    Icons& icons;
    CreditResolver& credits;
    const AppCatalog& catalog;
};

} // namespace tessarine
