#include <rx/tv_rx_dictionary.h>

namespace {

class Shape : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(Shape)
};
TVRX_DEFINE_MEMBERS(Shape, TvRxObject)

class Circle : public Shape
{
    TVRX_DECLARE_MEMBERS(Circle)
};
TVRX_DEFINE_MEMBERS(Circle, Shape)

/// Has no class of its own, as far as the run time knows.
class Dot : public Circle
{
};

TEST(TvRxClass, KnowsItsNameAndParent)
{
    EXPECT_EQ(TvString(Circle::desc()->name()), u"Circle");
    EXPECT_EQ(Circle::desc()->myParent(), Shape::desc());
    EXPECT_EQ(Shape::desc()->myParent(), TvRxObject::desc());
    EXPECT_EQ(TvString(TvRxObject::desc()->name()), u"TvRxObject");
    EXPECT_EQ(TvRxObject::desc()->myParent(), nullptr);
}

TEST(TvRxClass, DerivesFromItselfAndAllAbove)
{
    EXPECT_TRUE(Circle::desc()->isDerivedFrom(Circle::desc()));
    EXPECT_TRUE(Circle::desc()->isDerivedFrom(Shape::desc()));
    EXPECT_TRUE(Circle::desc()->isDerivedFrom(TvRxObject::desc()));
    EXPECT_FALSE(Shape::desc()->isDerivedFrom(Circle::desc()));
    EXPECT_FALSE(Circle::desc()->isDerivedFrom(TvRxDictionary::desc()));
    EXPECT_FALSE(Circle::desc()->isDerivedFrom(nullptr));
    EXPECT_FALSE(TvRxObject::desc()->isDerivedFrom(nullptr));
}

TEST(TvRxClass, IsToldByAddressAndNotByName)
{
    const TvRxClass twin(u"Circle", Shape::desc());

    EXPECT_FALSE(twin.isDerivedFrom(Circle::desc()));
    EXPECT_FALSE(Circle::desc()->isDerivedFrom(&twin));
}

TEST(TvRxObject, TellsTheClassItWasMadeOf)
{
    const Circle circle;
    const TvRxObject& object = circle;

    EXPECT_EQ(object.isA(), Circle::desc());
    EXPECT_TRUE(object.isKindOf(Shape::desc()));
    EXPECT_FALSE(object.isKindOf(TvRxDictionary::desc()));
    EXPECT_EQ(Dot().isA(), Circle::desc());
}

TEST(TvrxCast, GivesTheObjectOnlyAsWhatItIs)
{
    Circle circle;
    Shape shape;
    TvRxObject* asObject = &circle;
    const TvRxObject* asConst = &circle;

    EXPECT_EQ(tvrxCast<Shape>(asObject), &circle);
    EXPECT_EQ(tvrxCast<Circle>(asConst), &circle);
    EXPECT_EQ(tvrxCast<Circle>(static_cast<TvRxObject*>(&shape)), nullptr);
    EXPECT_EQ(tvrxCast<TvRxDictionary>(asObject), nullptr);
}

TEST(TvrxCast, GivesNullForNull)
{
    EXPECT_EQ(tvrxCast<Circle>(static_cast<TvRxObject*>(nullptr)), nullptr);
    EXPECT_EQ(tvrxCast<Circle>(static_cast<const TvRxObject*>(nullptr)), nullptr);
}

} // namespace
