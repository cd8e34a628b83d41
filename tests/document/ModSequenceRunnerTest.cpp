#include "document/core/ModSequenceRunner.h"

#include "RunnerTestMods.h"
#include "core/ImageModCompound.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

// Owns a list of tiles and hands out the raw list the runner takes.
struct TileList {
    std::vector<std::unique_ptr<ImageMod>> tiles;

    template <typename T>
    T* add(std::unique_ptr<T> t)
    {
        T* raw = t.get();
        tiles.push_back(std::move(t));
        return raw;
    }
    TestCountMod* count(int32_t id, float amount = 1.0f) { return add(std::make_unique<TestCountMod>(id, amount)); }
    std::vector<ImageMod*> raw() const
    {
        std::vector<ImageMod*> r;
        for (const auto& t : tiles)
            r.push_back(t.get());
        return r;
    }
};

std::vector<int> countsOf(int n)
{
    std::vector<int> v;
    for (int i = 0; i < n; ++i)
        v.push_back(TestCountMod::counts()[size_t(i)].load());
    return v;
}

template <typename Image>
bool samePixels(const Image& a, const Image& b)
{
    if (a.width != b.width || a.height != b.height || a.channels != b.channels)
        return false;
    for (int64_t i = 0; i < a.sampleCount(); ++i) {
        if (a.data[i] != b.data[i])
            return false;
    }
    return true;
}

// What the list makes of the source with no cache at all.
template <typename Image>
void reference(const std::vector<ImageMod*>& list, const Image& source, Image& out)
{
    ModSequenceRunner plain(false, false, 256, 0.5f);
    plain.run(list, const_cast<Image*>(&source), &out, -1, 0, nullptr);
}

// Five counting tiles; a drag of tile 3's slider, pass after pass, as the viewport runs it.
template <typename Image>
void dragOnTileThree()
{
    TestCountMod::resetCounts();
    TileList list;
    for (int i = 0; i < 5; ++i)
        list.count(i, float(i + 1));
    Image source(40, 30, 3);
    fillGradient(source);
    Image work(0, 0, 3), expected(0, 0, 3);
    ModSequenceRunner runner(true, false, 256, 0.5f);

    runner.run(list.raw(), &source, &work, -1, 0, nullptr);
    EXPECT_EQ(countsOf(5), (std::vector<int>{1, 1, 1, 1, 1}));
    EXPECT_EQ(runner.currentCachedStage(), -1);

    // First move: everything runs once more and the pixels after stage 2 are kept.
    static_cast<TestCountMod*>(list.tiles[3].get())->setAmount(7.0f);
    runner.run(list.raw(), &source, &work, -1, 0, nullptr);
    EXPECT_EQ(countsOf(5), (std::vector<int>{2, 2, 2, 2, 2}));
    EXPECT_EQ(runner.currentCachedStage(), 2);

    // Further moves: only tiles 3 and 4 run, from the kept pixels, with the same result.
    for (float amount : {9.0f, -4.0f, 12.0f}) {
        static_cast<TestCountMod*>(list.tiles[3].get())->setAmount(amount);
        runner.run(list.raw(), &source, &work, -1, 0, nullptr);
        reference(list.raw(), source, expected);
        EXPECT_TRUE(samePixels(work, expected)) << amount;
        EXPECT_EQ(runner.currentCachedStage(), 2);
    }
    // The reference runs add one to every count each time; the drag itself ran 0..2 twice only.
    EXPECT_EQ(countsOf(5), (std::vector<int>{5, 5, 5, 8, 8}));
}

// Counting tiles over an 8 x 8 gradient, through a caching runner into `work`.
class CachedRunner : public ::testing::Test {
protected:
    void SetUp() override
    {
        TestCountMod::resetCounts();
        fillGradient(img);
    }
    void run() { runner.run(list.raw(), &img, &work, -1, 0, nullptr); }
    void setAmount(size_t tile, float amount) { static_cast<TestCountMod*>(list.tiles[tile].get())->setAmount(amount); }
    // n tiles run once, then tile `moved` changed and run again: the cache now holds the pixels
    // after stage moved - 1. The counts start afresh.
    void prime(int n, int moved)
    {
        for (int i = 0; i < n; ++i)
            list.count(i);
        run();
        setAmount(size_t(moved), 3.0f);
        run();
        ASSERT_EQ(runner.currentCachedStage(), moved - 1);
        TestCountMod::resetCounts();
    }

    TileList list;
    FlexImageFloat img{8, 8, 3};
    FlexImageFloat work{0, 0, 3};
    ModSequenceRunner runner{true, false, 256, 0.5f};
};

} // namespace

TEST(ModSequenceRunner, SliderDragRerunsOnlyTheChangedTileAndLater)
{
    dragOnTileThree<FlexImageFloat>();
    dragOnTileThree<FlexImage8>();
}

TEST_F(CachedRunner, FirstTileChangeClearsTheCache)
{
    ASSERT_NO_FATAL_FAILURE(prime(4, 2));
    setAmount(0, 5.0f);
    run();
    EXPECT_EQ(countsOf(4), (std::vector<int>{1, 1, 1, 1}));
    EXPECT_EQ(runner.currentCachedStage(), -1);
    EXPECT_EQ(runner.saveStage, -1);
}

TEST_F(CachedRunner, UnchangedRepeatRestoresTheCache)
{
    ASSERT_NO_FATAL_FAILURE(prime(4, 2));
    run();
    EXPECT_EQ(countsOf(4), (std::vector<int>{0, 0, 1, 1}));
    EXPECT_EQ(runner.currentCachedStage(), 1);
    EXPECT_EQ(runner.saveStage, -1);
    FlexImageFloat expected(0, 0, 3);
    reference(list.raw(), img, expected);
    EXPECT_TRUE(samePixels(work, expected));
}

TEST_F(CachedRunner, RemovingALaterTileKeepsTheCache)
{
    ASSERT_NO_FATAL_FAILURE(prime(5, 2));
    list.tiles.pop_back();
    run();
    EXPECT_EQ(countsOf(5), (std::vector<int>{0, 0, 1, 1, 0}));
    EXPECT_EQ(runner.currentCachedStage(), 1);
}

TEST_F(CachedRunner, OneTileListStoresNoCache)
{
    list.count(0);
    run();
    setAmount(0, 3.0f);
    run();
    EXPECT_EQ(runner.saveStage, -1);
    EXPECT_EQ(runner.currentCachedStage(), -1);
    EXPECT_EQ(runner.cacheImage, nullptr);
}

TEST_F(CachedRunner, BorderAddedOrChangedFlushes)
{
    ASSERT_NO_FATAL_FAILURE(prime(4, 3));
    TestBorderMod* border = list.add(std::make_unique<TestBorderMod>());
    run();
    EXPECT_EQ(countsOf(4), (std::vector<int>{1, 1, 1, 1}));
    // Stages 0..3 matched, so this run stored a fresh cache after stage 3.
    EXPECT_EQ(runner.currentCachedStage(), 3);

    border->variableAt(0)->setFloatValue(5.0f);
    TestCountMod::resetCounts();
    run();
    EXPECT_EQ(countsOf(4), (std::vector<int>{1, 1, 1, 1}));
}

TEST_F(CachedRunner, BorderAddedWithAMoveOfTheCachedTileRunsEverything)
{
    // The list still matches up to the kept stage, but the border changes every stage's layout.
    ASSERT_NO_FATAL_FAILURE(prime(4, 3));
    list.add(std::make_unique<TestBorderMod>());
    setAmount(3, 8.0f);
    run();
    EXPECT_EQ(countsOf(4), (std::vector<int>{1, 1, 1, 1}));
}

TEST(ModSequenceRunner, CompoundAtFullStrengthOpensIntoStages)
{
    auto makeGroup = [](float amount) {
        auto group = std::make_unique<ImageModCompound>();
        group->addChild(std::make_unique<TestCountMod>(1));
        group->addChild(std::make_unique<TestCountMod>(2));
        group->amountVariable()->setFloatValue(amount);
        return group;
    };
    FlexImageFloat img(8, 8, 3);
    fillGradient(img);
    {
        TileList list;
        list.count(0);
        list.add(makeGroup(0.99f));
        ModSequenceRunner runner(true, false, 256, 0.5f);
        runner.run(list.raw(), &img, nullptr, -1, 0, nullptr);
        EXPECT_EQ(runner.stageCount(), 2);
        EXPECT_EQ(runner.mods[1]->kind(), ImageModCompound::compoundKind);
    }
    {
        TileList list;
        list.count(0);
        list.add(makeGroup(1.0f));
        ModSequenceRunner runner(true, false, 256, 0.5f);
        runner.run(list.raw(), &img, nullptr, -1, 0, nullptr);
        ASSERT_EQ(runner.stageCount(), 3);
        EXPECT_EQ(static_cast<TestCountMod*>(runner.mods[1].get())->id(), 1);
        EXPECT_EQ(static_cast<TestCountMod*>(runner.mods[2].get())->id(), 2);
    }
    {
        // A mask in front keeps the group whole.
        TileList list;
        list.add(std::make_unique<TestConstMask>(0.5f));
        list.add(makeGroup(1.0f));
        EXPECT_EQ(ModSequenceRunner::flattenList(list.raw()).size(), 2u);
    }
}

TEST(ModSequenceRunner, FlattenedGroupGivesTheSamePixelsAsTheGroup)
{
    FlexImageFloat source(10, 10, 3);
    fillGradient(source);
    auto group = std::make_unique<ImageModCompound>();
    group->addChild(std::make_unique<TestConstMask>(0.5f));
    group->addChild(std::make_unique<TestCountMod>(1, 10.0f));
    group->addChild(std::make_unique<TestCountMod>(2, 4.0f));
    FlexImageFloat direct(0, 0, 3), staged(0, 0, 3);
    direct.copyFrom(source, true);
    group->apply(&direct, nullptr);
    TileList list;
    list.add(std::move(group));
    ModSequenceRunner runner(true, false, 256, 0.5f);
    runner.run(list.raw(), &source, &staged, -1, 0, nullptr);
    EXPECT_EQ(runner.stageCount(), 3);
    EXPECT_TRUE(samePixels(direct, staged));
    EXPECT_FLOAT_EQ(staged.data[0], source.data[0] + 5.0f + 4.0f);
}

TEST(ModSequenceRunner, EmptyListCopies)
{
    FlexImageFloat source(9, 7, 4);
    fillGradient(source);
    source.scale = 3.0f;
    FlexImageFloat out(0, 0, 3);
    ModSequenceRunner runner(true, false, 256, 0.5f);
    runner.run(std::vector<ImageMod*>{}, &source, &out, -1, 0, nullptr);
    EXPECT_TRUE(samePixels(source, out));
    EXPECT_EQ(out.scale, 3.0f);
    EXPECT_EQ(runner.currentCachedStage(), -1);
    EXPECT_TRUE(runner.hasResult);
    EXPECT_FALSE(runner.isBusy());
}

TEST_F(CachedRunner, ClonesNeverAliasTheCallersMods)
{
    TestCountMod* first = list.count(0, 2.0f);
    auto group = std::make_unique<ImageModCompound>();
    group->addChild(std::make_unique<TestCountMod>(1));
    group->amountVariable()->setFloatValue(0.5f);
    ImageModCompound* groupRaw = list.add(std::move(group));
    run();
    ASSERT_EQ(runner.stageCount(), 2);
    EXPECT_NE(runner.mods[0].get(), first);
    EXPECT_NE(runner.mods[1].get(), groupRaw);
    auto* clonedGroup = dynamic_cast<ImageModCompound*>(runner.mods[1].get());
    ASSERT_NE(clonedGroup, nullptr);
    ASSERT_EQ(clonedGroup->childCount(), 1);
    EXPECT_NE(clonedGroup->children[0].get(), groupRaw->children[0].get());

    // Changing the caller's tile afterwards leaves the clone as it was run.
    first->setAmount(99.0f);
    EXPECT_EQ(runner.mods[0]->floatValue(0), 2.0f);
    // An equal clone is taken back from the pool rather than made anew.
    ImageMod* keptClone = runner.mods[1].get();
    run();
    EXPECT_EQ(runner.mods[1].get(), keptClone);
    EXPECT_EQ(runner.mods[0]->floatValue(0), 99.0f);
}

TEST(ModSequenceRunner, WithoutCacheEveryStageRunsEveryPass)
{
    TestCountMod::resetCounts();
    TileList list;
    for (int i = 0; i < 3; ++i)
        list.count(i);
    FlexImageFloat img(8, 8, 3);
    fillGradient(img);
    ModSequenceRunner runner(false, false, 2, 0.5f);
    EXPECT_EQ(runner.minimumSize, 16);
    for (int pass = 0; pass < 3; ++pass) {
        static_cast<TestCountMod*>(list.tiles[2].get())->setAmount(float(pass));
        runner.run(list.raw(), &img, nullptr, -1, 0, nullptr);
    }
    EXPECT_EQ(countsOf(3), (std::vector<int>{3, 3, 3}));
    EXPECT_EQ(runner.cacheImage, nullptr);
}

TEST_F(CachedRunner, SizeChangeAndFlushDropTheCache)
{
    ASSERT_NO_FATAL_FAILURE(prime(3, 2));
    FlexImageFloat other(9, 8, 3);
    fillGradient(other);
    runner.run(list.raw(), &other, &work, -1, 0, nullptr);
    EXPECT_EQ(countsOf(3), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(runner.cacheImage->width, 9);

    runner.flushCache();
    EXPECT_EQ(runner.cacheImage, nullptr);
    EXPECT_EQ(runner.currentCachedStage(), -1);
}

TEST_F(CachedRunner, MasksActOnTheStageToTheirRight)
{
    list.count(0, 10.0f);
    list.add(std::make_unique<TestConstMask>(0.25f));
    list.add(std::make_unique<TestConstMask>(0.5f));
    list.count(1, 8.0f);
    run();
    EXPECT_FLOAT_EQ(work.data[5], img.data[5] + 10.0f + 8.0f * 0.125f);
}

TEST(ModSequenceRunner, AnalysisRunsOnASmallProxy)
{
    TestCountMod::resetCounts();
    TileList list;
    list.count(0);
    list.add(std::make_unique<TestAnalysisMod>(1));
    list.count(2)->enabled = false;
    FlexImageFloat img(300, 200, 3);
    fillGradient(img);
    img.scale = 2.0f;
    ModSequenceRunner runner(true, false, 256, 0.5f);
    runner.run(list.raw(), &img, nullptr, -1, 0, nullptr);
    EXPECT_EQ(TestAnalysisMod::seen().width.load(), 100);
    EXPECT_EQ(TestAnalysisMod::seen().height.load(), 67);
    EXPECT_FLOAT_EQ(TestAnalysisMod::seen().scale.load(), 6.0f);
    EXPECT_FALSE(TestAnalysisMod::seen().frame.load());
    EXPECT_EQ(TestCountMod::analyses()[0].load(), 1);
    EXPECT_EQ(TestCountMod::analyses()[1].load(), 1);
    EXPECT_EQ(TestCountMod::analyses()[2].load(), 0);

    // Analysis runs on every pass, also when the stages are served from the cache.
    runner.run(list.raw(), &img, nullptr, -1, 0, nullptr);
    EXPECT_EQ(TestCountMod::analyses()[1].load(), 2);

    // The frame's proxy is used when there is one.
    FlexImageFloat proxy(30, 20, 3);
    fillGradient(proxy);
    proxy.scale = 20.0f;
    ReferenceFrame frame;
    frame.proxy = &proxy;
    runner.run(list.raw(), &img, nullptr, -1, 0, &frame);
    EXPECT_EQ(TestAnalysisMod::seen().width.load(), 30);
    EXPECT_FLOAT_EQ(TestAnalysisMod::seen().scale.load(), 20.0f);
}

TEST_F(CachedRunner, CancelStopsBeforeTheNextStage)
{
    list.count(0);
    list.add(std::make_unique<TestHookMod>())->hook = [this] { runner.requestCancel(); };
    list.count(1);
    run();
    EXPECT_EQ(countsOf(2), (std::vector<int>{1, 0}));
    EXPECT_FALSE(runner.isBusy());
    EXPECT_FALSE(runner.hasResult);
    EXPECT_FALSE(runner.cancelRequested);
}

TEST(ModSequenceRunner, AsyncRunFinishesOnItsOwnThread)
{
    TileList list;
    list.count(0, 3.0f);
    list.count(1, 4.0f);
    FlexImageFloat source(64, 48, 3);
    fillGradient(source);
    FlexImageFloat out(0, 0, 3), expected(0, 0, 3);
    reference(list.raw(), source, expected);
    ModSequenceRunner runner(true, true, 256, 0.5f);
    runner.run(list.raw(), &source, &out, -1, 0, nullptr);
    // The list may go away at once: the runner works on its clones.
    list.tiles.clear();
    for (int i = 0; i < 500 && runner.isBusy(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_FALSE(runner.isBusy());
    EXPECT_TRUE(samePixels(out, expected));

    // The 8-bit twin through the same road.
    FlexImage8 src8(16, 16, 3), out8(0, 0, 3);
    fillGradient(src8);
    TileList again;
    again.count(0, 3.0f);
    runner.run(again.raw(), &src8, &out8, -1, 0, nullptr);
    for (int i = 0; i < 500 && runner.isBusy(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_FALSE(runner.isBusy());
    EXPECT_EQ(out8.data[0], uint8_t(src8.data[0] + 3));
}

TEST_F(CachedRunner, EmptyImageDoesNothing)
{
    list.count(0);
    FlexImageFloat empty(0, 0, 3);
    runner.run(list.raw(), &empty, nullptr, -1, 0, nullptr);
    runner.run(list.raw(), static_cast<FlexImageFloat*>(nullptr), nullptr, -1, 0, nullptr);
    EXPECT_EQ(countsOf(1), (std::vector<int>{0}));
    EXPECT_EQ(runner.stageCount(), 0);
}

TEST(ModSequenceRunner, AnalysisProxyKeepsTheAspectAndTheScale)
{
    FlexImageFloat portrait(400, 1000, 3);
    fillGradient(portrait);
    portrait.scale = 1.5f;
    auto proxy = makeAnalysisProxy(portrait, 150);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->width, 60);
    EXPECT_EQ(proxy->height, 150);
    EXPECT_FLOAT_EQ(proxy->scale, 400.0f * 1.5f / 60.0f);
    // Never larger than the image.
    FlexImageFloat small(30, 20, 3);
    fillGradient(small);
    proxy = makeAnalysisProxy(small, 150);
    EXPECT_EQ(proxy->width, 30);
    EXPECT_EQ(proxy->height, 20);
    FlexImageFloat empty(0, 0, 3);
    EXPECT_EQ(makeAnalysisProxy(empty, 150), nullptr);
}

// A drag on a tile that can read the cached pixels itself: each move runs it once, from the cache
// into the working image, with no restore copy and no in-place pass; the pixels, alpha and
// placement are those of a run without a cache. Under a mask, or disabled, the tile takes the
// usual restore-then-apply way with the same result.
TEST(ModSequenceRunner, TileAfterTheCacheRunsStraightFromIt)
{
    for (const bool inPlace : {false, true}) {
        for (const int variant : {0, 1, 2}) { // plain, masked, disabled
            SCOPED_TRACE(testing::Message() << "in place " << inPlace << " variant " << variant);
            TestCountMod::resetCounts();
            TestSourcedMod::sourcedRuns().store(0);
            TileList list;
            list.count(0, 2.0f);
            list.count(1, 3.0f);
            if (variant == 1)
                list.add(std::make_unique<TestConstMask>(0.5f));
            auto* dragged = list.add(std::make_unique<TestSourcedMod>(2, 5.0f));
            dragged->enabled = variant != 2;
            list.count(3, 1.0f);
            FlexImageFloat source(40, 30, 4);
            fillGradient(source);
            source.scale = 2.5f;
            source.marginLeft = 3;
            source.marginBottom = 7;
            FlexImageFloat work(0, 0, 4), expected(0, 0, 4);
            ModSequenceRunner runner(true, false, 256, 0.5f);
            auto pass = [&] {
                if (inPlace) {
                    work.copyFrom(source, true);
                    runner.run(list.raw(), &work, nullptr, -1, 0, nullptr);
                } else {
                    runner.run(list.raw(), &source, &work, -1, 0, nullptr);
                }
            };
            pass();
            dragged->setAmount(6.0f);
            pass();
            const int32_t cached = variant == 1 ? 2 : 1;
            ASSERT_EQ(runner.currentCachedStage(), cached);
            TestCountMod::resetCounts();
            TestSourcedMod::sourcedRuns().store(0);
            int moves = 0;
            for (float amount : {9.0f, -4.0f, 12.5f}) {
                dragged->setAmount(amount);
                pass();
                ++moves;
                reference(list.raw(), source, expected);
                EXPECT_TRUE(samePixels(work, expected)) << amount;
                EXPECT_EQ(runner.currentCachedStage(), cached);
            }
            // The reference runs count once per move on every enabled tile.
            const int fromCache = variant == 0 ? moves : 0;
            EXPECT_EQ(TestSourcedMod::sourcedRuns().load(), fromCache);
            EXPECT_EQ(countsOf(4), (std::vector<int>{moves, moves, variant == 2 ? 0 : 2 * moves - fromCache,
                                                     2 * moves}));
            EXPECT_FLOAT_EQ(work.scale, 2.5f);
            EXPECT_EQ(work.marginLeft, 3);
            EXPECT_EQ(work.marginBottom, 7);
            EXPECT_EQ(work.row(29)[39 * 4 + 3], source.row(29)[39 * 4 + 3]); // alpha passes through
        }
    }
}
