#pragma once

#include "launcherapp/panel/view/LauncherPanel.h"
#include "launcherapp/panel/view/QueryField.h"
#include "launcherapp/panel/view/rows/RowList.h"
#include "tests/panel/FakePanelServices.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <string>
#include <vector>

namespace tessarine {

/// The panel as the user has it, over a model with invented rows.
class PanelFixture : public testing::Test, protected FakePanelServices {
protected:
    PanelFixture() {
        model.families.windows = [this](std::string_view) { return rows; };
        model.dismiss = [this] { ++dismissals; };
        // Names that hold the tests' letters too.
        for (const auto& info : Keywords::all())
            services.prefs.disableKeyword(info.keyword);
        panel.show();
        fit();
        field().setFocus();
    }

    /// A row that notes its title when it runs; the first of them leads.
    ResultRow row(const std::string& title, const std::string& subtitle = "") {
        return {.id = "row:" + title,
                .kind = RowKind::command,
                .title = title,
                .subtitle = subtitle,
                .symbol = "link",
                .primary = [this, title] { ran.push_back(title); },
                .primaryLabel = "open",
                .group = std::string(RowGroup::answers),
                .score = 10000 - static_cast<std::int64_t>(rows.size())};
    }

    void addRows(const std::vector<std::string>& titles) {
        for (const auto& title : titles)
            rows.push_back(row(title));
    }

    /// Gives the panel the height that it wants, as the controller does.
    void fit() {
        const QSize inside(720, panel.root().wantedHeight());
        panel.resize(inside.grownBy(panel.contentsMargins()));
    }

    void type(const QString& text) {
        for (const auto character : text)
            press(character.isLetter() ? character.toUpper().unicode() : character.unicode(),
                  Qt::NoModifier,
                  text.size() == 1 ? text : QString(character));
    }

    void press(int key,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               const QString& text = {},
               quint32 scanCode = 0) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers, scanCode, 0, 0, text);
        QApplication::sendEvent(&field(), &down);
    }

    void release(int key) {
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(&field(), &up);
    }

    void compose(const QString& preedit, const QString& commit = {}) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QApplication::sendEvent(&field(), &event);
    }

    QueryField& field() { return panel.field(); }

    RowList& list() { return panel.root().list(); }

    QImage drawn() {
        QImage image(panel.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        panel.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    Rows rows;
    std::vector<std::string> ran;
    int dismissals = 0;
    LauncherPanel panel{view()};
};

} // namespace tessarine
