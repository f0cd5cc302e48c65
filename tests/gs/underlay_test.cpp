// Pages of documents under a drawing.

#include <cairo-pdf.h>

#include <functional>
#include <numbers>
#include <set>
#include <thread>

#include <db/record_editor.h>
#include <db/tv_db_annotations.h>
#include <db/tv_db_curves.h>
#include <gs/picture.h>
#include <temp_folder.h>

#include "scene_tools.h"

namespace {

constexpr std::uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;
constexpr std::int64_t kClipped = 1, kOn = 2, kMonochrome = 4, kSuits = 8, kInverted = 16;

using Draw = std::function<void(cairo_t*)>;

void fillRectangle(cairo_t* context, std::uint32_t rgb, double x, double y, double w, double h)
{
    const auto part = [rgb](int shift) { return (rgb >> shift & 0xFF) / 255.0; };
    cairo_set_source_rgb(context, part(16), part(8), part(0));
    cairo_rectangle(context, x, y, w, h);
    cairo_fill(context);
}

/// Pages are that much smaller than what is drawn of them here: small ones are read quickly.
constexpr double kEnlarged = 10;

/// A document with a page for each of @p pages, of that many units.
std::string pdfOf(const std::vector<Draw>& pages, double width = 20, double height = 10)
{
    constexpr double kUnit = 72 / kEnlarged; // points
    std::string bytes;
    const auto append = [](void* all, const unsigned char* data, unsigned int length) {
        static_cast<std::string*>(all)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    };
    cairo_surface_t* const surface =
        cairo_pdf_surface_create_for_stream(append, &bytes, width * kUnit, height * kUnit);
    cairo_t* const context = cairo_create(surface);
    for (const Draw& page : pages) {
        cairo_save(context);
        cairo_scale(context, kUnit, kUnit);
        page(context);
        cairo_restore(context);
        cairo_show_page(context);
    }
    cairo_destroy(context);
    cairo_surface_destroy(surface);
    return bytes;
}

/// Red in the left half, green in the upper right quarter, nothing in the lower right one.
void drawQuarters(cairo_t* context)
{
    fillRectangle(context, kRed, 0, 0, 10, 10);
    fillRectangle(context, kGreen, 10, 0, 10, 5);
}

/// A drawing with a document beside it, which it shows.
class UnderlayScene
{
public:
    explicit UnderlayScene(const std::string& pdf = pdfOf({drawQuarters}))
    {
        m_folder.write("plan.pdf", pdf);
    }

    DrawingScene scene;
    /// Of the next underlay.
    double x = 0, y = 0, scale = 1, angle = 0;
    std::int64_t flags = kOn, contrast = 100, fade = 0;
    std::string page = "1", kind = "PDF";
    std::vector<TvGePoint2d> clip, hole;

    void add()
    {
        auto* file = new TvDbUnderlayDefinition;
        file->setSourceFileName(m_folder.file("plan.pdf"));
        file->edit().setText("item", TvString(page).view());
        TvDbObjectId fileId;
        ASSERT_EQ(scene.database().addTvDbObject(fileId, file), TvStatus::Ok);
        file->close();
        const TvDbObjectId id = scene.add(new Reference(kind + "UNDERLAY"));
        const TvDbObjectPointer<TvDbUnderlayReference> entity(id, TvDb::kForWrite);
        db::RecordEditor edit = entity->edit();
        edit.setPoint("ins_pt", {x, y, 0});
        edit.setPoint("scale", {scale * kEnlarged, scale * kEnlarged, scale * kEnlarged});
        edit.setReal("angle", angle);
        edit.setInteger("flags", flags);
        edit.setInteger("contrast", contrast);
        edit.setInteger("fade", fade);
        setPoints(edit, "clip", clip);
        setPoints(edit, "inv", hole);
        edit.setHandle("definition", fileId.handle().value());
    }
    void write(const std::string& pdf) { m_folder.write("plan.pdf", pdf); }
    void remove() { std::filesystem::remove(m_folder.path() / "plan.pdf"); }

private:
    // By the name of its class.
    class Reference : public TvDbUnderlayReference
    {
    public:
        explicit Reference(const std::string& name) : TvDbUnderlayReference(name.c_str()) {}
    };
    static void setPoints(db::RecordEditor& edit, const char* field,
                          const std::vector<TvGePoint2d>& points)
    {
        if (points.empty())
            return;
        db::ArrayEditor list = edit.array(field);
        list.resize(static_cast<std::uint32_t>(points.size()));
        for (std::uint32_t i = 0; i < points.size(); ++i)
            list.setPoint(i, {points[i].x / kEnlarged, points[i].y / kEnlarged, 0});
    }

    TempFolder m_folder;
};

/// Ten pixels a unit, from the origin on.
class Seen
{
public:
    explicit Seen(UnderlayScene& of, gs::Background background = gs::Background::Light)
        : m_list(of.scene.list())
    {
        gs::View view;
        view.center = {15, 15};
        view.width = view.height = 300;
        view.pixelsPerUnit = 10;
        gs::PlayOptions options;
        options.background = background;
        m_picture = gs::pictureOf(m_list, view, options);
    }
    std::uint32_t at(double x, double y) const
    {
        return m_picture.at(static_cast<int>(x * 10), 299 - static_cast<int>(y * 10)) & 0xFFFFFF;
    }
    const gs::DisplayList& list() const { return m_list; }
    const gs::Picture& picture() const { return m_picture; }

private:
    gs::DisplayList m_list;
    gs::Picture m_picture;
};

std::size_t pagesIn(const gs::DisplayList& list)
{
    std::set<const gs::Picture*> pages;
    for (const gs::Filling& filling : list.fillings())
        pages.insert(filling.picture.get());
    return pages.size();
}

void expectFrameWithName(UnderlayScene& scene)
{
    const gs::DisplayList list = scene.scene.list();
    EXPECT_TRUE(list.fillings().empty());
    ASSERT_EQ(list.texts().size(), 1U);
    EXPECT_EQ(list.texts()[0].text, TvString(u"plan.pdf"));
    EXPECT_EQ(list.pictures().size(), 1U);
}

} // namespace

TEST(Underlay, IsDrawnWhereItStands)
{
    UnderlayScene scene;
    scene.x = 5, scene.y = 3;
    scene.add();
    const Seen seen(scene);
    EXPECT_EQ(seen.at(6, 4), kRed);
    EXPECT_EQ(seen.at(14, 12), kRed);
    EXPECT_EQ(seen.at(16, 9), kGreen);
    EXPECT_EQ(seen.at(16, 7), kWhite); // nothing is on its paper there
    EXPECT_EQ(seen.at(4, 4), kWhite);
    const gs::Box& box = seen.list().extents();
    EXPECT_NEAR(box.width(), 20, 1e-3);
    EXPECT_NEAR(box.height(), 10, 1e-3);
    EXPECT_TRUE(seen.list().texts().empty());
    EXPECT_EQ(seen.list().pictures().size(), 1U);
}

TEST(Underlay, ItsPaperShowsWhatIsBelow)
{
    UnderlayScene scene;
    auto* below = new TvDbSolid;
    db::RecordEditor edit = below->edit();
    edit.setPoint("p1", {0, 0, 0});
    edit.setPoint("p2", {20, 0, 0});
    edit.setPoint("p3", {0, 10, 0});
    edit.setPoint("p4", {20, 10, 0});
    const TvDbObjectId blue = scene.scene.addLayer(u"blue", 5);
    const TvDbObjectId id = scene.scene.add(below);
    TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->setLayer(blue);
    scene.add();
    const Seen seen(scene);
    EXPECT_EQ(seen.at(15, 2), kBlue);
    EXPECT_EQ(seen.at(5, 2), kRed);
}

TEST(Underlay, IsScaledAndTurned)
{
    UnderlayScene scene;
    scene.x = 20, scene.y = 2, scene.scale = 0.5, scene.angle = std::numbers::pi / 2;
    scene.add(); // 10 by 5, turned to the left: from (15, 2) to (20, 12)
    const Seen seen(scene);
    EXPECT_EQ(seen.at(17, 4), kRed);
    EXPECT_EQ(seen.at(16, 10), kGreen);
    EXPECT_EQ(seen.at(19, 10), kWhite);
    EXPECT_EQ(seen.at(21, 4), kWhite);
    EXPECT_NEAR(seen.list().extents().lowX, 15, 1e-3);
}

TEST(Underlay, IsCutByItsBoundaryWhenItSaysSo)
{
    UnderlayScene scene;
    scene.clip = {{2, 2}, {12, 8}};
    scene.add();
    EXPECT_EQ(Seen(scene).at(1, 1), kRed); // kept, and not used
    scene.flags = kOn | kClipped;
    UnderlayScene cut;
    cut.clip = scene.clip, cut.flags = scene.flags;
    cut.add();
    const Seen seen(cut);
    EXPECT_EQ(seen.at(1, 1), kWhite);
    EXPECT_EQ(seen.at(3, 3), kRed);
    EXPECT_EQ(seen.at(11, 7), kGreen);
    EXPECT_EQ(seen.at(13, 7), kWhite);
    EXPECT_NEAR(seen.list().extents().highX, 12, 1e-6);
}

TEST(Underlay, IsNotDrawnBeyondItsPageWhereTheBoundaryIsLarger)
{
    UnderlayScene scene;
    scene.x = 5, scene.y = 5;
    scene.flags = kOn | kClipped;
    scene.clip = {{-3, -3}, {5, -3}, {5, 5}, {-3, 5}};
    scene.add();
    const Seen seen(scene);
    EXPECT_EQ(seen.at(6, 6), kRed);
    EXPECT_EQ(seen.at(4, 4), kWhite);
    EXPECT_EQ(seen.at(11, 6), kWhite);
}

TEST(Underlay, WithAnInvertedBoundaryShowsWhatIsOutside)
{
    for (const bool isKeptApart : {true, false}) {
        UnderlayScene scene;
        scene.flags = kOn | kClipped | kInverted;
        scene.clip = {{2, 2}, {6, 6}};
        if (isKeptApart) { // what those who know no holes cut with is kept beside it
            scene.hole = scene.clip;
            scene.clip = {{0, 0}, {20, 0}, {20, 10}, {0, 10}, {0, 0}, {2, 2}, {2, 6}, {6, 6}};
        }
        scene.add();
        const Seen seen(scene);
        EXPECT_EQ(seen.at(4, 4), kWhite) << isKeptApart;
        EXPECT_EQ(seen.at(1, 1), kRed) << isKeptApart;
        EXPECT_EQ(seen.at(16, 8), kGreen) << isKeptApart;
    }
}

TEST(Underlay, ThatIsOffIsNothing)
{
    UnderlayScene scene;
    scene.flags = 0;
    scene.add();
    EXPECT_TRUE(scene.scene.list().items().empty());
}

TEST(Underlay, ShowsThePageThatItNames)
{
    UnderlayScene scene(pdfOf(
        {drawQuarters, [](cairo_t* context) { fillRectangle(context, kBlue, 0, 0, 20, 10); }}));
    scene.page = "2";
    scene.add();
    EXPECT_EQ(Seen(scene).at(4, 4), kBlue);
}

TEST(Underlay, WithoutItsFileOrPageIsAFrameWithItsName)
{
    for (const char* page : {"3", "0", "-1", "99999999999999999999", "cover", ""}) {
        UnderlayScene scene;
        scene.page = page;
        scene.add();
        SCOPED_TRACE(page);
        expectFrameWithName(scene);
    }
    UnderlayScene scene;
    scene.add();
    scene.remove();
    expectFrameWithName(scene);
}

TEST(Underlay, OfADamagedFileIsAFrameWithItsName)
{
    const std::string whole = pdfOf({drawQuarters});
    for (const std::string& bytes :
         {std::string(), std::string("no document at all"), whole.substr(0, whole.size() / 4),
          std::string("%PDF-1.7\ntrailer << /Root 1 0 R >>\n%%EOF")}) {
        UnderlayScene scene(bytes);
        scene.add();
        SCOPED_TRACE(bytes.size());
        expectFrameWithName(scene);
    }
}

TEST(Underlay, OfAnotherKindOfDocumentIsAFrameWithItsName)
{
    for (const char* kind : {"DWF", "DGN"}) {
        UnderlayScene scene;
        scene.kind = kind;
        scene.add();
        SCOPED_TRACE(kind);
        expectFrameWithName(scene);
    }
}

TEST(Underlay, OfAHugePageTakesBoundedMemory)
{
    UnderlayScene scene(pdfOf({drawQuarters}, 10'000, 10'000));
    scene.scale = 0.001;
    scene.add();
    const Seen seen(scene);
    ASSERT_EQ(seen.list().fillings().size(), 1U);
    EXPECT_LE(seen.list().fillings()[0].picture->pixels.size(), 8'000'000U);
}

TEST(Underlay, ThatNeverEndsIsGivenUp)
{
    // Forms within forms: each draws the next one twenty times over.
    std::string pdf = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                      "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                      "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 72]/Contents 4 0 R"
                      "/Resources<</XObject<</F 5 0 R>>>>>>endobj\n"
                      "4 0 obj<</Length 4>>stream\n/F Do\nendstream endobj\n";
    for (int i = 5; i < 30; ++i) {
        std::string content;
        for (int j = 0; j < 20; ++j)
            content += i < 29 ? "/F Do " : "0 0 9 9 re f ";
        const std::string number = std::to_string(i);
        pdf += number +
               " 0 obj<</Type/XObject/Subtype/Form/BBox[0 0 72 72]/Resources<</XObject<</F " +
               std::to_string(i + 1) + " 0 R>>>>/Length " + std::to_string(content.size()) +
               ">>stream\n" + content + "\nendstream endobj\n";
    }
    pdf += "trailer<</Root 1 0 R>>\n%%EOF\n";
    UnderlayScene scene(pdf);
    scene.add();
    std::atomic<bool> stop = false;
    gs::ListLimits limits;
    limits.stop = &stop;
    std::thread impatient([&stop] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        stop = true;
    });
    const gs::DisplayList list = gs::DisplayList::ofModel(scene.scene.database(), limits);
    impatient.join();
    EXPECT_TRUE(list.fillings().empty());
}

TEST(Underlay, IsReadOnceHoweverOftenItIsShown)
{
    UnderlayScene scene;
    scene.scale = 0.2;
    for (int i = 0; i < 5; ++i) {
        scene.y = i * 3;
        scene.add();
    }
    gs::DisplayList list = scene.scene.list();
    ASSERT_EQ(list.fillings().size(), 5U);
    EXPECT_EQ(pagesIn(list), 1U);
    const auto first = list.fillings()[0].picture;
    EXPECT_EQ(scene.scene.list().fillings()[0].picture, first); // the other list holds it
    scene.write(pdfOf({[](cairo_t* context) { fillRectangle(context, kBlue, 0, 0, 20, 10); }}));
    EXPECT_EQ(Seen(scene).at(1, 1), kBlue);
}

TEST(Underlay, OfOneColourIsGray)
{
    UnderlayScene scene;
    scene.flags = kOn | kMonochrome;
    scene.add();
    const std::uint32_t gray = Seen(scene).at(4, 4);
    EXPECT_EQ(gray & 0xFF, gray >> 16 & 0xFF);
    EXPECT_EQ(gray & 0xFF, gray >> 8 & 0xFF);
    EXPECT_NEAR(gray & 0xFF, 76, 2);
}

TEST(Underlay, SuitsADarkBackgroundWhenItSaysSo)
{
    const std::string black =
        pdfOf({[](cairo_t* context) { fillRectangle(context, 0, 0, 0, 10, 10); }});
    for (const std::int64_t flag : {std::int64_t(0), kSuits}) {
        UnderlayScene scene(black);
        scene.flags = kOn | flag;
        scene.add();
        EXPECT_EQ(Seen(scene, gs::Background::Dark).at(4, 4), flag ? kWhite : 0U);
        EXPECT_EQ(Seen(scene).at(4, 4), 0U);
        EXPECT_EQ(Seen(scene, gs::Background::Dark).at(15, 4),
                  gs::rgbOf(gs::Background::Dark)); // nothing is there
    }
}

TEST(Underlay, FadesAndLosesContrastAsItSays)
{
    UnderlayScene scene;
    scene.fade = 50;
    scene.add();
    const std::uint32_t faded = Seen(scene).at(4, 4);
    EXPECT_NEAR(faded >> 16, 255, 1);
    EXPECT_NEAR(faded & 0xFF, 128, 2);
    UnderlayScene pale;
    pale.contrast = 50;
    pale.add();
    const std::uint32_t gray = Seen(pale).at(4, 4);
    EXPECT_NEAR(gray >> 16, 191, 2);
    EXPECT_NEAR(gray & 0xFF, 64, 2);
}
