#include "launcherapp/index/proof/WalkerSelftests.h"

#include "launcherapp/index/proof/WalkerFixture.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/index/walk/LegacyWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

namespace {

constexpr std::string_view walkerPrefix = "selftest-walker: ";
constexpr std::string_view deltaPrefix = "selftest-delta: ";
constexpr std::size_t mostDirectories = 200;

const std::set<std::string> expectedShape{"d1/",
                                          "d1/d2/",
                                          "d1/d2/d3/",
                                          "d1/d2/d3/d4/",
                                          "d1/d2/d3/d4/d5/",
                                          "d1/d2/d3/d4/d5/d6/",
                                          "d1/f1.txt",
                                          "d1/d2/f2.md",
                                          "d1/d2/d3/f3",
                                          "Thing.app",
                                          "plain.tar.gz",
                                          "link-to-d1"};
const std::set<std::string> expectedFolders{
    "d1/", "d1/d2/", "d1/d2/d3/", "d1/d2/d3/d4/", "d1/d2/d3/d4/d5/"};

class WalkerCheck {
public:
    WalkerCheck(const IndexWalker& walker,
                FileStore& files,
                const Environment& environment,
                SelftestLines& lines)
        : walker_(walker), files_(files), fixture_(files, environment), lines_(lines) {}

    void run() {
        const auto walk = walked(WalkerFixture::policy());
        checkShape(walk.items);
        checkFields(walk.items);
        checkLegacy(walk.items);
        checkDigest(walk.items);
        checkLimits();
        if (lines_.passed())
            lines_.say(fmt::format("{} items are the expected ones, the second walker agrees, and "
                                   "every decoy is told apart",
                                   walk.items.size()));
    }

private:
    IndexWalker::Result walked(const IndexWalker::Policy& policy) const {
        return walker_.walkTree(fixture_.root(), 1, policy);
    }

    /// The failure, if it is not what was expected.
    std::optional<std::string> checkSet(std::string_view what,
                                        const ItemList& items,
                                        const std::set<std::string>& expected) const {
        const auto shape = fixture_.shapeOf(items);
        if (shape == expected)
            return std::nullopt;
        return fmt::format("{}: missing {}; unexpected {}",
                           what,
                           missingFrom(expected, shape),
                           missingFrom(shape, expected));
    }

    void checkShape(const ItemList& items) {
        lines_.requireNone(checkSet("the fixture", items, expectedShape));
        auto wrong = expectedShape;
        wrong.erase("plain.tar.gz");
        wrong.insert("d1/d2/d3/d4/f4.TXT");
        lines_.require(checkSet("a wrong spec", items, wrong).has_value(),
                       "the comparison cannot fail: a wrong spec matched");
        auto policy = WalkerFixture::policy();
        policy.foldersOnly = true;
        policy.folderDepth = 5;
        lines_.requireNone(checkSet("folders only", walked(policy).items, expectedFolders));
    }

    void checkFields(const ItemList& items) {
        struct Fields {
            std::string_view name;
            std::string_view norm;
            std::string_view ext;
        };

        constexpr auto expected = std::to_array<Fields>({{"Thing.app", "thing.app", "app"},
                                                         {"plain.tar.gz", "plain.tar.gz", "gz"},
                                                         {"link-to-d1", "link-to-d1", ""}});
        for (const auto& fields : expected) {
            for (std::size_t i = 0; i < items.size(); ++i) {
                if (items.name(i) != fields.name)
                    continue;
                lines_.require(!items.isFolder(i) && items.norm(i) == fields.norm &&
                                   items.ext(i) == fields.ext,
                               fmt::format("{}: isFolder={} norm={} ext={}",
                                           fields.name,
                                           items.isFolder(i),
                                           items.norm(i),
                                           items.ext(i)));
            }
        }
    }

    void checkLegacy(const ItemList& items) {
        const auto legacy = legacyWalk(fixture_.root(), WalkerFixture::policy())
                                .value_or(std::vector<IndexedItem>());
        ItemList legacyList;
        for (const auto& item : legacy)
            legacyList.add(item);
        const auto ours = fixture_.shapeOf(items);
        const auto theirs = fixture_.shapeOf(legacyList);
        lines_.require(ours == theirs,
                       fmt::format("legacy walker disagrees on the fixture: only-legacy {}; "
                                   "only-new {}",
                                   missingFrom(theirs, ours),
                                   missingFrom(ours, theirs)));
        // Item by item, since a list derives extensions itself.
        bool isEqual = items.size() == legacy.size();
        for (std::size_t i = 0; isEqual && i < legacy.size(); ++i)
            isEqual = items.item(i) == legacy[i];
        lines_.require(ours != theirs || isEqual,
                       "legacy walker disagrees on the fixture: the same paths in another order "
                       "or with other fields");
    }

    void checkDigest(const ItemList& items) {
        lines_.require(walked(WalkerFixture::policy()).items.digest() == items.digest(),
                       "digest is not deterministic across two walks of an unchanged tree");
        files_.rename(fixture_.path("d1/f1.txt"), fixture_.path("d1/g1.txt"));
        const auto renamed = walked(WalkerFixture::policy()).items;
        lines_.require(
            renamed.size() == items.size(),
            fmt::format("a rename changed the count from {} to {}", items.size(), renamed.size()));
        lines_.require(renamed.digest() != items.digest(),
                       "DECOY MISSED: a rename with an unchanged count produced the same digest");
        files_.rename(fixture_.path("d1/g1.txt"), fixture_.path("d1/f1.txt"));
    }

    void checkLimits() {
        auto policy = WalkerFixture::policy();
        policy.budget = 3;
        const auto capped = walked(policy);
        lines_.require(capped.capped && capped.opened && capped.items.size() == 3,
                       fmt::format("the budget cap did not hold: capped={} items={}",
                                   capped.capped,
                                   capped.items.size()));
        const auto missing =
            walker_.walkTree(fixture_.path("not-there"), 1, WalkerFixture::policy());
        lines_.require(!missing.opened && missing.items.empty(),
                       "a missing root reported opened=true");
    }

    const IndexWalker& walker_;
    FileStore& files_;
    WalkerFixture fixture_;
    SelftestLines& lines_;
};

class DeltaCheck {
public:
    DeltaCheck(const IndexWalker& walker,
               FileStore& files,
               const Environment& environment,
               SelftestLines& lines)
        : walker_(walker), files_(files), fixture_(files, environment), lines_(lines) {}

    void run() {
        files_.save(fixture_.path("other/a/one.txt"), "");
        files_.save(fixture_.path("other/a/b/two.txt"), "");
        list_ = fresh();
        checkChanges();
        checkUnseen();
        checkWrongDirectory();
        checkLargeBatch();
        if (lines_.passed())
            lines_.say(fmt::format("{} changes were reconciled to what a fresh walk finds, and "
                                   "every decoy is told apart",
                                   changes_));
    }

private:
    ItemList fresh() const {
        return walker_.walkTree(fixture_.root(), 1, WalkerFixture::policy()).items;
    }

    IndexWalker::Reconciled reconciled(const std::vector<std::string>& changed) const {
        return walker_.reconcile(
            fixture_.root(), changed, WalkerFixture::policy(), list_, mostDirectories);
    }

    bool isAsFresh(const ItemList& items, const ItemList& walked) const {
        return fixture_.shapeOf(items) == fixture_.shapeOf(walked) &&
               items.size() == walked.size() && items.digest() == walked.digest();
    }

    /// The tree has changed in a directory: the repaired list is the one to go on with.
    void checkChange(std::string_view what, std::string_view directory) {
        ++changes_;
        auto repaired = reconciled({fixture_.path(directory)});
        const auto walked = fresh();
        const auto ours = fixture_.shapeOf(repaired.items);
        const auto theirs = fixture_.shapeOf(walked);
        lines_.require(isAsFresh(repaired.items, walked) && !repaired.fullWalkNeeded,
                       fmt::format("{}: reconcile is not the fresh walk: missing {}; left over {}",
                                   what,
                                   missingFrom(theirs, ours),
                                   missingFrom(ours, theirs)));
        lines_.require(walked.digest() != list_.digest(),
                       fmt::format("{}: the change itself did not show in a fresh walk", what));
        list_ = std::move(repaired.items);
    }

    void checkChanges() {
        files_.save(fixture_.path("d1/added.txt"), "");
        checkChange("file added", "d1");
        files_.save(fixture_.path("d1/newdir/x/y/z.txt"), "");
        checkChange("subtree added", "d1");
        files_.remove(fixture_.path("d1/newdir"));
        checkChange("subtree removed", "d1");
        files_.rename(fixture_.path("other/a"), fixture_.path("other/renamed"));
        checkChange("directory renamed", "other");
        files_.remove(fixture_.path("d1/f1.txt"));
        files_.save(fixture_.path("d1/f1.txt/inside.txt"), "");
        checkChange("file became folder", "d1");
        files_.save(fixture_.path("top.txt"), "");
        lines_.require(reconciled({fixture_.root()}).fullWalkNeeded,
                       "root event: no full walk was asked for");
        list_ = fresh();
        files_.save(fixture_.path("other/renamed/b/late.txt"), "");
        checkChange("late file after the rename", "other/renamed/b");
    }

    void checkUnseen() {
        constexpr auto unseen = std::to_array<std::string_view>(
            {"node_modules/left-pad", ".hidden", "Thing.app/Contents"});
        for (const auto directory : unseen) {
            files_.save(fixture_.path(std::string(directory) + "/more.txt"), "");
            const auto result = reconciled({fixture_.path(directory)});
            lines_.require(result.dirsWalked == 0 && !result.fullWalkNeeded &&
                               result.items == list_,
                           "an event under a skipped, hidden or package directory caused a walk");
        }
        lines_.require(isAsFresh(list_, fresh()),
                       "a file under a skipped, hidden or package directory came into a walk");
    }

    void checkWrongDirectory() {
        files_.save(fixture_.path("d1/d2/decoy.txt"), "");
        const auto wrong = reconciled({fixture_.path("other")});
        lines_.require(!isAsFresh(wrong.items, fresh()),
                       "DECOY MISSED: reconciling the wrong directory still matched the fresh "
                       "walk; the comparison cannot fail");
    }

    void checkLargeBatch() {
        constexpr int count = 250;
        std::vector<std::string> batch;
        batch.reserve(count);
        for (int i = 0; i < count; ++i)
            batch.push_back(fixture_.path(fmt::format("d1/batch{}", i)));
        const auto result = reconciled(batch);
        lines_.require(result.fullWalkNeeded && result.items == list_,
                       "a 250-directory batch did not ask for a full walk");
    }

    const IndexWalker& walker_;
    FileStore& files_;
    WalkerFixture fixture_;
    SelftestLines& lines_;
    ItemList list_;
    int changes_ = 0;
};

template <typename Check>
SelftestResult checked(std::string_view prefix,
                       const IndexWalker& walker,
                       FileStore& files,
                       const Environment& environment) {
    SelftestLines lines(prefix);
    try {
        Check(walker, files, environment, lines).run();
    } catch (const FileError& error) {
        return lines.brokenOff(error.what());
    }
    return lines.result();
}

} // namespace

SelftestResult
walkerSelftest(const IndexWalker& walker, FileStore& files, const Environment& environment) {
    return checked<WalkerCheck>(walkerPrefix, walker, files, environment);
}

SelftestResult
deltaSelftest(const IndexWalker& walker, FileStore& files, const Environment& environment) {
    return checked<DeltaCheck>(deltaPrefix, walker, files, environment);
}

} // namespace tessarine
