#include "launcherapp/panel/view/modes/RenderModes.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/panel/PanelPlacement.h"
#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/LauncherPanel.h"
#include "launcherapp/panel/view/ShortcutSheet.h"
#include "launcherapp/panel/view/modes/RenderPurity.h"
#include "launcherapp/panel/view/modes/ShortcutSelftest.h"
#include "launcherapp/panel/view/rows/RowList.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

/// The catalog's first scan may still be reading a slow disk: it is waited for as long as
/// `--search` does.
constexpr Seconds retryAfter{0.05};
constexpr int lastAttempt = 299;
constexpr double sheetScale = 2;
constexpr int notMeasured = static_cast<int>(SelftestResult::Verdict::notMeasured);

/// For as long as it lives the panel looks otherwise; no setting is touched.
class SkinWhileDrawing {
public:
    SkinWhileDrawing(Appearance& appearance, std::optional<AppearancePreset> skin)
        : appearance_(appearance) {
        appearance_.setOverride(skin);
    }

    ~SkinWhileDrawing() { appearance_.setOverride(std::nullopt); }

    SkinWhileDrawing(const SkinWhileDrawing&) = delete;
    SkinWhileDrawing& operator=(const SkinWhileDrawing&) = delete;

private:
    Appearance& appearance_;
};

/// A widget as a screen of that density would show it, on nothing.
QImage drawn(QWidget& widget, double scale) {
    QImage image(QSize(static_cast<int>(std::ceil(widget.width() * scale)),
                       static_cast<int>(std::ceil(widget.height() * scale))),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

bool saved(const QImage& image, const std::string& path) {
    return image.save(QString::fromStdString(path),
                      path.find('.') == std::string::npos ? "png" : nullptr);
}

void end(ModeContext& context, const std::string& line, int status) {
    context.print(line);
    context.finish(status);
}

} // namespace

PanelModes RenderModes::modes() {
    return {
        .render = [this](ModeContext& context, const std::string& out) { render(context, out); },
        .renderSheet = [this](ModeContext& context,
                              const std::string& out) { renderSheet(context, out); },
        .renderShortcuts = [this](ModeContext& context,
                                  const std::string& folder) { renderShortcuts(context, folder); },
        .selftestRenderPurity = [this](ModeContext& context,
                                       const std::string&) { selftestRenderPurity(context); },
        .selftestShortcut =
            [](ModeContext& context, const std::string&) {
                const auto result = shortcutSelftest();
                end(context, result.report, static_cast<int>(result.verdict));
            },
    };
}

void RenderModes::render(ModeContext& context, const std::string& out) {
    const auto read = readRenderRequest(context.commandLine);
    if (!read.request)
        return end(context, read.problem, 1);
    renderOnceScanned(context, *read.request, out, 0);
}

void RenderModes::renderOnceScanned(ModeContext& context,
                                    const RenderRequest& request,
                                    const std::string& out,
                                    int attempt) {
    if (!context.catalog.lastScan() && attempt < lastAttempt) {
        context.queue.postAfter(retryAfter, [this, &context, request, out, attempt] {
            renderOnceScanned(context, request, out, attempt + 1);
        });
        return;
    }
    if (const auto problem = prepare(request))
        return end(context, problem->words, problem->status);
    context.queue.postAfter(request.settle, [this, &context, request, out] {
        takeOnceListed(context, request, out, 0);
    });
}

/// What a folder or a card holds may still be on its way; one that is empty says so in a row.
void RenderModes::takeOnceListed(ModeContext& context,
                                 const RenderRequest& request,
                                 const std::string& out,
                                 int attempt) {
    const bool isListed =
        request.mode == RenderRequest::Mode::ordinary || !services_.model.rows().empty();
    if (isListed || attempt == lastAttempt)
        return take(context, request, out);
    context.queue.postAfter(retryAfter, [this, &context, request, out, attempt] {
        takeOnceListed(context, request, out, attempt + 1);
    });
}

void RenderModes::take(ModeContext& context, const RenderRequest& request, const std::string& out) {
    QElapsedTimer clock;
    clock.start();
    const SkinWhileDrawing skin(services_.appearance, request.skin);
    if (request.selected)
        services_.model.select(*request.selected);
    prepareMenu(request);
    const bool isSaved = saved(picture(request), out);
    if (!isSaved)
        return end(context, "render failed", 1);
    end(context,
        fmt::format("rendered {} in {} ms rows={} skin={}",
                    out,
                    clock.elapsed(),
                    services_.model.rows().size(),
                    Palettes::name(services_.appearance.preset())),
        0);
}

std::optional<RenderModes::Problem> RenderModes::prepare(const RenderRequest& request) {
    auto& model = services_.model;
    model.setQuery("");
    if (request.mode == RenderRequest::Mode::clipboard)
        return prepareClipboard(request);
    model.setQuery(request.query);
    switch (request.mode) {
    case RenderRequest::Mode::ordinary:
    case RenderRequest::Mode::clipboard:
        return std::nullopt;
    case RenderRequest::Mode::browse:
        return prepareFolder(request);
    case RenderRequest::Mode::person:
        return preparePerson(request);
    }
    return std::nullopt;
}

std::optional<RenderModes::Problem> RenderModes::prepareClipboard(const RenderRequest& request) {
    auto& model = services_.model;
    if (!model.families.clipboard)
        return Problem{"--clip: NOT MEASURED, the clipboard history is not built yet", notMeasured};
    const auto key = request.clipFilter ? rowsOf(model.families.resolveFilter, *request.clipFilter)
                                        : std::nullopt;
    if (request.clipFilter && !key)
        return Problem{fmt::format("--clip-filter: no built-in category or taught group named {}",
                                   *request.clipFilter)};
    model.enterClipboardMode();
    if (key) {
        const auto items = model.filterMenuItems();
        const auto found = std::ranges::find(items, *key, &FilterMenuItem::key);
        model.commitFilterMenu(static_cast<std::size_t>(found - items.begin()));
    }
    model.setQuery(request.query);
    return std::nullopt;
}

std::optional<RenderModes::Problem> RenderModes::prepareFolder(const RenderRequest& request) {
    auto& model = services_.model;
    if (!select([&](const ResultRow& row) {
            return rowsOf(model.families.folderPath, row).has_value();
        }))
        return Problem{fmt::format("--browse: no folder matches {}", request.query)};
    model.drillIn();
    return std::nullopt;
}

std::optional<RenderModes::Problem> RenderModes::preparePerson(const RenderRequest& request) {
    auto& model = services_.model;
    if (!model.families.people || !model.families.personCard)
        return Problem{"--person: NOT MEASURED, contacts had not loaded when the panel was "
                       "photographed",
                       notMeasured};
    if (!select(
            [&](const ResultRow& row) { return rowsOf(model.families.personID, row).has_value(); }))
        return Problem{fmt::format("--person: no contact matches {}", request.query)};
    model.drillIn();
    return std::nullopt;
}

bool RenderModes::select(const std::function<bool(const ResultRow& row)>& isWanted) {
    const auto& rows = services_.model.rows();
    const auto found = std::ranges::find_if(rows, isWanted);
    if (found == rows.end())
        return false;
    services_.model.select(static_cast<std::size_t>(found - rows.begin()));
    return true;
}

void RenderModes::prepareMenu(const RenderRequest& request) {
    auto& model = services_.model;
    switch (request.menu) {
    case RenderRequest::Menu::none:
        break;
    case RenderRequest::Menu::actions:
        model.openActions();
        break;
    case RenderRequest::Menu::panelActions:
        model.openPanelActions();
        break;
    case RenderRequest::Menu::filter:
        model.filterMenuTab(SearchModel::TabDirection::forward);
        model.moveFilterMenu(static_cast<int>(request.filterRow));
        break;
    }
}

QImage RenderModes::picture(const RenderRequest& request) {
    services_.model.holdClipRows(request.clipRows);
    LauncherPanel panel(services_);
    panel.setAttribute(Qt::WA_DontShowOnScreen);
    if (request.isMirrored)
        panel.setLayoutDirection(Qt::RightToLeft);
    if (request.isOpaque)
        panel.setBlending(PanelRoot::Blending::opaque);
    auto& root = panel.root();
    root.setTextScale(request.text);
    root.footer().hold(request.footer);
    if (request.hasMark)
        root.list().markFirstApp();
    root.holdPreview(request.preview);
    const auto width = PanelPlacement::width(request.width.value_or(services_.prefs.width()));
    const QSize inside(static_cast<int>(width), root.wantedHeight());
    panel.resize(inside.grownBy(panel.contentsMargins()));
    panel.show();
    root.settle(request.scale);
    return drawn(panel, request.scale);
}

void RenderModes::renderSheet(ModeContext& context, const std::string& out) {
    const auto read = readRenderRequest(context.commandLine);
    if (!read.request)
        return end(context, read.problem, 1);
    const SkinWhileDrawing skin(services_.appearance, read.request->skin);
    const bool isSaved = saved(sheetPicture(sheetScale), out);
    end(context, isSaved ? fmt::format("rendered {}", out) : "render failed", isSaved ? 0 : 1);
}

void RenderModes::renderShortcuts(ModeContext& context, const std::string& folder) {
    QDir().mkpath(QString::fromStdString(folder));

    struct Sheet {
        const char* name;
        AppearancePreset skin;
    };

    const Sheet sheets[] = {{"shortcuts-dark.png", services_.prefs.preset()},
                            {"shortcuts-light.png", services_.prefs.lightPreset()}};
    for (const auto& [name, preset] : sheets) {
        const SkinWhileDrawing skin(services_.appearance, preset);
        const auto path = fmt::format("{}/{}", folder, name);
        if (!saved(sheetPicture(sheetScale), path))
            return end(context, "render failed", 1);
        context.print(fmt::format("rendered {}", path));
    }
    context.finish(0);
}

QImage RenderModes::sheetPicture(double scale) {
    const PanelStyle style(
        services_.appearance.palette(), services_.prefs.textScale(), QApplication::font());
    ShortcutSheet sheet(nullptr, style);
    sheet.setAttribute(Qt::WA_DontShowOnScreen);
    sheet.resize(sheet.wantedSize());
    return drawn(sheet, scale);
}

void RenderModes::selftestRenderPurity(ModeContext& context) {
    const auto result = renderPurity(context, services_.appearance, [this](AppearancePreset skin) {
        const SkinWhileDrawing whileDrawing(services_.appearance, skin);
        RenderRequest request;
        request.skin = skin;
        request.scale = 1;
        return picture(request);
    });
    end(context, result.report, static_cast<int>(result.verdict));
}

} // namespace tessarine
