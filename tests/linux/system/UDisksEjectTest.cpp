#include "launcherapp/platform/linux/system/files/UDisksEject.h"

#include "tests/linux/system/SystemFixture.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>
#include <QVariantMap>
#include <algorithm>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

constexpr auto root = "/org/freedesktop/UDisks2/";

/// Paths of objects have no dashes.
QDBusObjectPath object(std::string name) {
    std::ranges::replace(name, '-', '_');
    return QDBusObjectPath(QString::fromStdString(name.empty() ? "/" : root + name));
}

QString of(const char* interface) {
    return QStringLiteral("org.freedesktop.UDisks2.") + QLatin1String(interface);
}

struct BlockSpec {
    std::string name;
    std::string drive;
    std::string mount = {};
    std::string table = {};
    std::string cryptoBelow = {};
    const char* holds = "ext4";
    bool isSystem = false;
};

class UDisksEjectTest : public SystemFixture {
protected:
    UDisksEjectTest() {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        qDBusRegisterMetaType<QList<QByteArray>>();
        services.own("org.freedesktop.UDisks2");
        services.answers["GetManagedObjects"] = [this](const QDBusMessage&) {
            return QVariantList{QVariant::fromValue(objects)};
        };
        for (const auto* method : {"Unmount", "Lock", "PowerOff", "Eject", "Delete"})
            services.answer(method);
    }

    /// A stick, unless told otherwise.
    void drive(const std::string& name, const QVariantMap& changes = {}) {
        QVariantMap values{
            {QStringLiteral("Vendor"), QStringLiteral("Acme")},
            {QStringLiteral("Model"), QString::fromStdString(name)},
            {QStringLiteral("Removable"), true},
            {QStringLiteral("MediaRemovable"), true},
            {QStringLiteral("MediaAvailable"), true},
            {QStringLiteral("Ejectable"), true},
            {QStringLiteral("CanPowerOff"), true},
            {QStringLiteral("MediaCompatibility"), QStringList{QStringLiteral("thumb")}}};
        for (auto each = changes.begin(); each != changes.end(); ++each)
            values[each.key()] = each.value();
        objects[object("drives/" + name)][of("Drive")] = values;
    }

    Interfaces& block(const BlockSpec& spec) {
        auto& interfaces = objects[object("block_devices/" + spec.name)];
        const auto reference = [](const std::string& folder, const std::string& name) {
            return QVariant::fromValue(object(name.empty() ? "" : folder + name));
        };
        interfaces[of("Block")] = {
            {QStringLiteral("Drive"), reference("drives/", spec.drive)},
            {QStringLiteral("CryptoBackingDevice"), reference("block_devices/", spec.cryptoBelow)},
            {QStringLiteral("IdType"), QLatin1String(spec.holds)},
            {QStringLiteral("IdLabel"), QString::fromStdString(spec.name)},
            {QStringLiteral("HintSystem"), spec.isSystem}};
        if (!spec.table.empty())
            interfaces[of("Partition")] = {
                {QStringLiteral("Table"), reference("block_devices/", spec.table)}};
        if (!spec.mount.empty())
            interfaces[of("Filesystem")] = {
                {QStringLiteral("MountPoints"),
                 QVariant::fromValue(QList<QByteArray>{QByteArray(
                     spec.mount.c_str(), static_cast<qsizetype>(spec.mount.size() + 1))})}};
        return interfaces;
    }

    std::optional<std::string> eject() {
        EffectContext context{.doors = std::make_shared<const SystemDoors>(doors()),
                              .facts = {.hasUDisks = true},
                              .session = std::nullopt,
                              .system = sessionBus()};
        const auto effect = UDisksEject::ejectAll(context);
        EXPECT_TRUE(effect.ability.available);
        return ended(effect.perform);
    }

    std::vector<std::string> acts() {
        std::vector<std::string> found;
        for (const auto& call : services.acts())
            found.push_back(call.substr(std::string(root).size()));
        return found;
    }

    Objects objects;
};

TEST_F(UDisksEjectTest, takesEachExternalDriveApartInOrder) {
    drive("stick");
    block({.name = "sdb", .drive = "stick", .holds = ""});
    block({.name = "sdb1", .drive = "stick", .mount = "/media/me/sdb1", .table = "sdb"});
    auto& locked =
        block({.name = "sdb2", .drive = "stick", .table = "sdb", .holds = "crypto_LUKS"});
    locked[of("Encrypted")] = {
        {QStringLiteral("CleartextDevice"), QVariant::fromValue(object("block_devices/dm_2d0"))}};
    // UDisks knows no drive of what is unlocked, and takes it for the machine's own.
    block({.name = "dm_2d0",
           .drive = "",
           .mount = "/media/me/secret",
           .cryptoBelow = "sdb2",
           .isSystem = true});
    EXPECT_EQ(eject(), std::nullopt);
    EXPECT_THAT(acts(),
                ElementsAre("block_devices/dm_2d0 Filesystem.Unmount()",
                            "block_devices/sdb1 Filesystem.Unmount()",
                            "block_devices/sdb2 Encrypted.Lock()",
                            "drives/stick Drive.PowerOff()"));
}

TEST_F(UDisksEjectTest, touchesNothingOfTheRunningSystem) {
    const QVariantMap builtIn{{QStringLiteral("Removable"), false},
                              {QStringLiteral("MediaRemovable"), false},
                              {QStringLiteral("Ejectable"), false}};
    drive("builtin", builtIn);
    block({.name = "sda1", .drive = "builtin", .mount = "/mnt/data"});
    drive("usb-root"); // a system on a USB disk
    block({.name = "sdb1", .drive = "usb-root", .mount = "/"});
    block({.name = "sdb2", .drive = "usb-root", .mount = "/media/me/more"});
    drive("usb-boot");
    block({.name = "sdc1", .drive = "usb-boot", .mount = "/boot/efi"});
    drive("volumes"); // the root may lie in its volume group
    block({.name = "sdd1", .drive = "volumes", .holds = "LVM2_member"});
    drive("unlocked-root");
    block({.name = "sde", .drive = "unlocked-root", .holds = "crypto_LUKS"});
    block({.name = "dm_2d1", .drive = "", .mount = "/", .cryptoBelow = "sde"});
    drive("live");
    block({.name = "sdf1", .drive = "live", .mount = "/run/live/medium"});
    drive("swapping");
    block({.name = "sdg", .drive = "swapping"})[of("Swapspace")] = {
        {QStringLiteral("Active"), true}};
    drive("told"); // an administrator's rule
    block({.name = "sdh", .drive = "told", .mount = "/mnt/x", .isSystem = true});
    drive("empty-reader", {{QStringLiteral("MediaAvailable"), false}});
    block({.name = "loop0", .drive = "", .mount = "/snap/core"})[of("Loop")] = {
        {QStringLiteral("SetupByUID"), 0U}};
    block({.name = "loop1", .drive = "", .mount = "/media/other"})[of("Loop")] = {
        {QStringLiteral("SetupByUID"), 1001U}};
    EXPECT_EQ(eject(), std::nullopt);
    EXPECT_THAT(acts(), IsEmpty());
}

TEST_F(UDisksEjectTest, partsWithEachKindAsItGoes) {
    drive("1-card",
          {{QStringLiteral("MediaCompatibility"), QStringList{QStringLiteral("flash_sd")}}});
    drive("2-disk",
          {{QStringLiteral("Ejectable"), false}, {QStringLiteral("MediaRemovable"), false}});
    drive("3-plain", {{QStringLiteral("CanPowerOff"), false}});
    block({.name = "loop5",
           .drive = "",
           .mount = "/media/me/image",
           .isSystem = true})[of("Loop")] = {{QStringLiteral("SetupByUID"), 1000U}};
    EXPECT_EQ(eject(), std::nullopt);
    EXPECT_THAT(acts(),
                ElementsAre("block_devices/loop5 Filesystem.Unmount()",
                            "block_devices/loop5 Loop.Delete()",
                            "drives/1_card Drive.Eject()", // its reader stays of use
                            "drives/2_disk Drive.PowerOff()",
                            "drives/3_plain Drive.Eject()"));
}

TEST_F(UDisksEjectTest, namesTheDriveThatIsInUseAndGoesOn) {
    drive("busy");
    block({.name = "sdb1", .drive = "busy", .mount = "/media/me/busy"});
    drive("idle");
    services.answers.erase("Unmount");
    const auto problem = eject();
    EXPECT_THAT(problem.value_or(""), HasSubstr("“Acme busy” could not be ejected: not now"));
    EXPECT_THAT(
        acts(),
        ElementsAre("block_devices/sdb1 Filesystem.Unmount()", "drives/idle Drive.PowerOff()"));
}

TEST_F(UDisksEjectTest, anAnswerOfAnotherShapeIsNoTree) {
    services.answer("GetManagedObjects", {QStringLiteral("what")});
    EXPECT_THAT(eject().value_or(""), HasSubstr("did not tell"));
    services.hung["GetManagedObjects"] = true;
    patience.act = Seconds{.05};
    EXPECT_TRUE(eject());
    EXPECT_THAT(acts(), IsEmpty());
}

} // namespace
} // namespace tessarine
