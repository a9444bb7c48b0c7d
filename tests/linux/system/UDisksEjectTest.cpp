#include "launcherapp/platform/linux/system/files/UDisksEject.h"

#include "launcherapp/platform/linux/system/files/BlockHolders.h"
#include "tests/linux/system/SystemFixture.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>
#include <QVariantMap>
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::AllOf;
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
    const char* fileSystemID = "";
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
            {QStringLiteral("Device"), QByteArray(("/dev/" + spec.name).c_str())},
            {QStringLiteral("IdUUID"), QLatin1String(spec.fileSystemID)},
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
    const QVariantMap builtIn{{QStringLiteral("Removable"), false},
                              {QStringLiteral("MediaRemovable"), false},
                              {QStringLiteral("Ejectable"), false}};
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
    drive("builtin", builtIn);
    block({.name = "sda1", .drive = "builtin", .mount = "/mnt/data"});
    drive("usb-root"); // a system on a USB disk
    block({.name = "sdb1", .drive = "usb-root", .mount = "/"});
    block({.name = "sdb2", .drive = "usb-root", .mount = "/media/me/more"});
    drive("usb-boot");
    block({.name = "sdc1", .drive = "usb-boot", .mount = "/boot/efi"});
    drive("homes");
    block({.name = "sdd1", .drive = "homes", .mount = "/home"});
    drive("a-home");
    block({.name = "sdd2", .drive = "a-home", .mount = "/home/somebody"});
    drive("own-home"); // wherever it is
    block({.name = "sdd3", .drive = "own-home", .mount = scratch.path()});
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

TEST_F(UDisksEjectTest, leavesAloneAndNamesWhatMayBeInUse) {
    const struct {
        const char* reason;
        std::function<void()> make;
        const char* told; ///< a part of it
    } cases[] = {
        {"the root may lie in its volume group",
         [&] { block({.name = "sdb1", .drive = "stick", .holds = "LVM2_member"}); },
         "volume group"},
        {"a btrfs that is mounted from another drive",
         [&] {
             block({.name = "sda3",
                    .drive = "builtin",
                    .mount = "/home",
                    .holds = "btrfs",
                    .fileSystemID = "one"});
             block({.name = "sdb1", .drive = "stick", .holds = "btrfs", .fileSystemID = "one"});
         },
         "a file system that is in use"},
        {"a bcachefs that is mounted here, with more of it elsewhere",
         [&] {
             block({.name = "sdb1",
                    .drive = "stick",
                    .mount = "/media/me/pool",
                    .holds = "bcachefs",
                    .fileSystemID = "one"});
             block(
                 {.name = "sda3", .drive = "builtin", .holds = "bcachefs", .fileSystemID = "one"});
         },
         "a file system that is in use"},
        {"a mapped volume, as of a live system",
         [&] {
             holders["sdb1"] = {"dm-0"};
             block({.name = "sdb1", .drive = "stick"});
             block({.name = "dm-0", .drive = "", .mount = "/run/elsewhere"});
         },
         "dm-0 uses it"},
        {"a volume within an unlocked one",
         [&] {
             holders["sdb1"] = {"dm-0"};
             holders["dm-0"] = {"dm-1"};
             block({.name = "sdb1", .drive = "stick", .holds = "crypto_LUKS"});
             block({.name = "dm-0", .drive = "", .cryptoBelow = "sdb1", .holds = "other"});
         },
         "dm-1 uses it"},
        {"nobody tells",
         [&] {
             holders["sdb1"] = std::nullopt;
             block({.name = "sdb1", .drive = "stick", .mount = "/media/me/x"});
         },
         "can't be told"},
    };

    for (const auto& [reason, make, told] : cases) {
        SCOPED_TRACE(reason);
        objects.clear();
        holders.clear();
        services.calls.clear();
        drive("stick");
        drive("builtin", builtIn);
        make();
        EXPECT_THAT(eject().value_or(""),
                    AllOf(HasSubstr("“Acme stick” was left alone"), HasSubstr(told)));
        EXPECT_THAT(acts(), IsEmpty());
    }
}

TEST_F(UDisksEjectTest, whatItKnowsToLieInADriveIsNoneOfTheSystems) {
    drive("stick");
    holders["sdb1"] = {"dm-0"};
    block({.name = "sdb1", .drive = "stick", .holds = "crypto_LUKS"});
    block({.name = "dm-0", .drive = "", .mount = "/media/me/x", .cryptoBelow = "sdb1"});
    drive("pool"); // the whole of it
    for (const auto* name : {"sdc1", "sdc2"})
        block({.name = name, .drive = "pool", .holds = "btrfs", .fileSystemID = "one"});
    drive("spare",
          {{QStringLiteral("CanPowerOff"), false}}); // mounted nowhere, like its other half
    block({.name = "sdd1", .drive = "spare", .holds = "btrfs", .fileSystemID = "two"});
    EXPECT_EQ(eject(), std::nullopt);
    EXPECT_THAT(acts(),
                ElementsAre("drives/pool Drive.PowerOff()",
                            "drives/spare Drive.Eject()",
                            "block_devices/dm_0 Filesystem.Unmount()",
                            "drives/stick Drive.PowerOff()"));
}

TEST_F(UDisksEjectTest, theDrivesOfOneDeviceLoseTheirPowerTogetherOrNotAtAll) {
    const auto bay = [&](const std::string& name, const std::string& mount) {
        drive("bay-" + name, {{QStringLiteral("SiblingId"), QStringLiteral("/sys/usb1/1-1")}});
        block({.name = "sd" + name, .drive = "bay-" + name, .mount = mount});
    };
    const std::vector<std::string> bothReleased{"block_devices/sda Filesystem.Unmount()",
                                                "block_devices/sdb Filesystem.Unmount()"};
    bay("a", "/media/me/a");
    bay("b", "/media/me/b");
    EXPECT_EQ(eject(), std::nullopt);
    auto all = bothReleased;
    all.emplace_back("drives/bay_a Drive.PowerOff()"); // for both
    EXPECT_EQ(acts(), all);

    const struct {
        const char* reason;
        std::function<void()> make;
        std::vector<std::string> calls;
        const char* told;
    } cases[] = {
        {"one is in use", [&] { services.answers.erase("Unmount"); }, bothReleased, "stays on"},
        {"the system runs on one",
         [&] { bay("b", "/var"); },
         {bothReleased.front()},
         "“Acme bay-a” is unmounted but stays on"},
        {"one may be in use",
         [&] { holders["sdb"] = {"dm-0"}; },
         {bothReleased.front()},
         "“Acme bay-b” was left alone"},
        {"one is the machine's own",
         [&] {
             drive("bay-b",
                   {{QStringLiteral("SiblingId"), QStringLiteral("/sys/usb1/1-1")},
                    {QStringLiteral("Removable"), false},
                    {QStringLiteral("MediaRemovable"), false},
                    {QStringLiteral("Ejectable"), false}});
         },
         {bothReleased.front()},
         "stays on"},
    };

    for (const auto& [reason, make, calls, told] : cases) {
        SCOPED_TRACE(reason);
        objects.clear();
        holders.clear();
        services.answer("Unmount");
        services.calls.clear();
        bay("a", "/media/me/a");
        bay("b", "/media/me/b");
        make();
        EXPECT_THAT(eject().value_or(""), HasSubstr(told));
        EXPECT_EQ(acts(), calls);
    }
}

TEST_F(UDisksEjectTest, whatWentByItselfHasNotFailed) {
    block({.name = "loop5", .drive = "", .mount = "/media/me/image"})[of("Loop")] = {
        {QStringLiteral("SetupByUID"), 1000U}};
    const auto refuse = [&](const char* method, const char* error) {
        services.answers.erase(method);
        services.refusals[method] = error;
    };
    refuse("Delete", "org.freedesktop.DBus.Error.UnknownObject"); // gone with its last mount
    EXPECT_EQ(eject(), std::nullopt);
    refuse("Unmount", "org.freedesktop.UDisks2.Error.NotMounted");
    EXPECT_EQ(eject(), std::nullopt);
    refuse("Unmount", "org.freedesktop.UDisks2.Error.DeviceBusy");
    EXPECT_THAT(eject().value_or(""), HasSubstr("“loop5” could not be ejected"));
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

TEST_F(UDisksEjectTest, theKernelTellsWhatIsMadeFromADevice) {
    const auto folder = scratch.folder("/block");
    scratch.folder("/block/sdb1/holders");
    EXPECT_EQ(blockHolders(folder, "sdb1"), std::vector<std::string>());
    scratch.write("/block/sdb1/holders/dm-0", "");
    EXPECT_EQ(blockHolders(folder, "sdb1"), std::vector<std::string>{"dm-0"});
    EXPECT_EQ(blockHolders(folder, "sdc"), std::nullopt);
    EXPECT_EQ(blockHolders(folder, ""), std::nullopt);
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
