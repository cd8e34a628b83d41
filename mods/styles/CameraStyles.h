#pragma once
#include "mods/styles/ImageModColorcross.h"
#include "mods/styles/ImageModStyle.h"

#include <memory>
#include <vector>

// The camera styles. Each is its constructor (names, tool tip, newest version) and its recipe; the
// recipes live in ColourStyles.cpp and FilmStyles.cpp, ImageModColorcross in its own file.

class ImageModSaloon : public ImageModStyle {
public:
    ImageModSaloon();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSaloon>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModPlastic : public ImageModStyle {
public:
    ImageModPlastic();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModPlastic>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModHipster : public ImageModStyle {
public:
    ImageModHipster();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHipster>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModWedding : public ImageModStyle {
public:
    ImageModWedding();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModWedding>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModSkater : public ImageModStyle {
public:
    ImageModSkater();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSkater>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModSilver : public ImageModStyle {
public:
    ImageModSilver();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModSilver>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModPoolside : public ImageModStyle {
public:
    ImageModPoolside();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModPoolside>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModMono : public ImageModStyle {
public:
    ImageModMono();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModMono>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModMatte : public ImageModStyle {
public:
    ImageModMatte();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModMatte>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModMagazine : public ImageModStyle {
public:
    ImageModMagazine();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModMagazine>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModLolo : public ImageModStyle {
public:
    ImageModLolo();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModLolo>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModItaliano : public ImageModStyle {
public:
    ImageModItaliano();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModItaliano>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModInstant : public ImageModStyle {
public:
    ImageModInstant();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModInstant>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModHelga : public ImageModStyle {
public:
    ImageModHelga();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModHelga>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageModAutochrome : public ImageModStyle {
public:
    ImageModAutochrome();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageModAutochrome>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageMod1983 : public ImageModStyle {
public:
    ImageMod1983();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageMod1983>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageMod1974 : public ImageModStyle {
public:
    ImageMod1974();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageMod1974>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageMod1962 : public ImageModStyle {
public:
    ImageMod1962();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageMod1962>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

class ImageMod1958 : public ImageModStyle {
public:
    ImageMod1958();
    std::unique_ptr<ImageMod> newInstance() const override { return std::make_unique<ImageMod1958>(); }
    void runRecipe(FlexImageFloat* image, const ImageModApplyContext* context, float a, float v) const override;
};

// One new instance of every style, in the order the tool panel lists them.
std::vector<std::unique_ptr<ImageMod>> buildStyleSection();
