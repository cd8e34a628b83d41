#pragma once
#include <QtWidgets/QDialog>

class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

// "Choose Save Options": the output size (width and height linked so the offered aspect holds),
// quality, file type from the save table and the batch postfix. The wizard and plain saves hide
// or disable what doesn't apply.
class SaveSizeWindow : public QDialog {
    Q_OBJECT
public:
    explicit SaveSizeWindow(QWidget* parent = nullptr);

    void setDialogText(const QString& text);
    // The size offered; the fields start with it and keep its aspect.
    void setOfferedSize(int width, int height);
    void setQuality(int quality);
    // Chooses the first row of the save table holding the extension (a leading dot is allowed);
    // an unknown one leaves the first row.
    void setExtension(const QString& extension);
    void setExtensionIndex(int index);
    void setPostfix(const QString& postfix);
    void hideSizeFields();
    void disablePostfixFields();
    void hideQualityFields();
    void setOkButtonText(const QString& text);

    // An empty or unusable size field gives the offered size.
    int resultWidth() const;
    int resultHeight() const;
    // Clamped to 0..100; an unusable field gives 85.
    int resultQuality() const;
    int resultExtensionIndex() const;
    // The first extension of the chosen row, without a dot.
    QString resultExtension() const;
    QString resultPostfix() const;
    bool sizeChanged() const;

    QLabel* dialogText = nullptr;
    QLabel* widthLabel = nullptr;
    QLineEdit* widthField = nullptr;
    QLabel* heightLabel = nullptr;
    QLineEdit* heightField = nullptr;
    QLabel* postfixLabel = nullptr;
    QLineEdit* postfixField = nullptr;
    QHBoxLayout* sizeFieldsLayout = nullptr;
    QLabel* qualityLabel = nullptr;
    QLineEdit* qualityField = nullptr;
    QLabel* typeLabel = nullptr;
    QComboBox* typeField = nullptr;
    QDialogButtonBox* buttons = nullptr;
    QPushButton* okButton = nullptr;

public slots:
    void widthEdited(const QString& newText);
    void heightEdited(const QString& newText);
    void qualityEdited(const QString& newText);
    void extensionEdited(int newIndex);

private:
    // Takes the row of label out of the form and hides its widgets.
    void hideRow(QWidget* label);

    QFormLayout* form = nullptr;
    int offeredWidth = 0;
    int offeredHeight = 0;
};

// The other side of a linked size field: the aspect of offered kept, rounded, at least 1.
int linkedSide(int edited, int offeredEdited, int offeredOther);
