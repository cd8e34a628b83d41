#pragma once
#include "core/FlexImage.h"
#include "core/ImageMod.h"

#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <memory>


class MVImageWithProcessing;

// One cell of the quicklook chooser: a preset's thumbnail with its name under it. The cell owns a
// copy of the preset; the thumbnail shows the chooser's picture through it, worked on a thread
// of its own once the chooser starts it.
class MVPreviewChooserItem : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kThumbWidth = 176;
    static constexpr int kThumbHeight = 118;
    static constexpr int kInset = 4;
    static constexpr int kNameHeight = 22;
    static constexpr int kCellWidth = kThumbWidth + 2 * kInset;
    static constexpr int kCellHeight = kThumbHeight + 2 * kInset + kNameHeight;

    enum State { Waiting, Working, Done };

    // source is not owned and must outlive the cell's passes.
    MVPreviewChooserItem(const QString& name, const ImageMod& preset, FlexImageFloat* source,
                         QWidget* parent = nullptr);
    ~MVPreviewChooserItem() override;

    // Starts the thumbnail's thread; does nothing unless waiting.
    void startThumbnail();
    // Waiting, Working or Done, as far as the thumbnail's thread has got.
    State state();
    void waitForIdle();

    ImageMod* preset() const { return presetMod.get(); }
    const QString& name() const { return title; }
    MVImageWithProcessing* thumbnail() const { return thumb; }
    bool isHovered() const { return hovered; }

signals:
    void chosen(MVPreviewChooserItem* item);

protected:
    void paintEvent(QPaintEvent* e) override;
    void enterEvent(QEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    QString title;
    std::unique_ptr<ImageMod> presetMod;
    MVImageWithProcessing* thumb = nullptr;
    bool started = false;
    bool hovered = false;
    bool pressed = false;
};
