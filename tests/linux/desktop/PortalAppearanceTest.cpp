#include "launcherapp/platform/linux/desktop/PortalAppearance.h"

#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>

namespace tessarine {
namespace {

using Settings = QMap<QString, QVariantMap>;

const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");

/// A portal in this process, on a connection of its own.
class Portal : public QDBusVirtualObject {
public:
    Portal() {
        qDBusRegisterMetaType<Settings>();
        owns = bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop")) &&
               bus_.registerVirtualObject(path, this);
    }

    ~Portal() override {
        bus_.unregisterObject(path);
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        ++asked;
        if (knowsSettings)
            connection.send(message.createReply(QVariant::fromValue(settings)));
        else
            connection.send(message.createReply(QStringLiteral("no settings")));
        return true;
    }

    void change(const QString& group, const QString& key, const QVariant& value) {
        auto signal = QDBusMessage::createSignal(path, interface, QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        bus_.send(signal);
    }

    bool owns = false;
    bool knowsSettings = true;
    int asked = 0;
    Settings settings;

private:
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
};

TEST(PortalAppearance, readsTheDesktopAndFollowsIt) {
    Portal portal;
    ASSERT_TRUE(portal.owns);
    portal.settings[appearance][QStringLiteral("color-scheme")] = 1U;
    PortalAppearance desktop;
    int changes = 0;
    const auto subscription = desktop.onChange([&] { ++changes; });
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::none); // it waited for nobody
    ASSERT_TRUE(spinUntil([&] { return changes == 1; }));
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::dark);
    EXPECT_EQ(desktop.motion(), Motion::full);

    portal.change(appearance, QStringLiteral("color-scheme"), 2U);
    ASSERT_TRUE(spinUntil([&] { return changes == 2; }));
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::light);

    portal.change(appearance, QStringLiteral("contrast"), 1U); // none of ours
    portal.change(
        QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"), false);
    ASSERT_TRUE(spinUntil([&] { return changes == 3; }));
    EXPECT_EQ(desktop.motion(), Motion::reduced);

    portal.change(appearance, QStringLiteral("color-scheme"), 77U); // of a later portal
    ASSERT_TRUE(spinUntil([&] { return changes == 4; }));
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::none);
}

TEST(PortalAppearance, theAccentIsThreePartsOfOne) {
    Portal portal;
    ASSERT_TRUE(portal.owns);
    PortalAppearance desktop;
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    const auto color = [](double red, double green, double blue) {
        QDBusArgument structure;
        structure.beginStructure();
        structure << red << green << blue;
        structure.endStructure();
        return QVariant::fromValue(structure);
    };

    const struct {
        QVariant value;
        std::optional<std::uint32_t> accent;
        const char* reason;
    } cases[] = {
        {color(0.2, 1, 0), 0x33FF00, "a colour"},
        {color(-1, -1, -1), std::nullopt, "a user without one"},
        {color(0, 0, 1), 0x0000FF, "another"},
        {color(0, 0, 255), std::nullopt, "no part of one"},
        {color(1, 0, 0), 0xFF0000, "a third"},
        {QStringLiteral("blue"), std::nullopt, "a word"},
    };

    for (const auto& [value, accent, reason] : cases) {
        portal.change(appearance, QStringLiteral("accent-color"), value);
        EXPECT_TRUE(spinUntil([&] { return desktop.accent() == accent; })) << reason;
    }
}

TEST(PortalAppearance, anAnswerOfAnotherShapeIsNoAnswer) {
    Portal portal;
    ASSERT_TRUE(portal.owns);
    portal.knowsSettings = false;
    PortalAppearance desktop;
    ASSERT_TRUE(spinUntil([&] { return portal.asked == 1; }));
    spinFor(20);
    EXPECT_EQ(desktop.colorScheme(), ColorScheme::none);
}

} // namespace
} // namespace tessarine
