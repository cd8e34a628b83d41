// Turns the Markdown user guide into the HTML page the Help menu shows and the package installs:
//   vantrel_guide <user-guide.md> <user-guide.html>
// and makes a screenshot into a guide picture (scaled, JPEG, so the guide stays small):
//   vantrel_guide --picture <shot.png> <picture.jpg> <width>
// Headings may end in "{#name}"; the name becomes the heading's anchor (the Help menu's entries
// jump to them). Qt's own Markdown reader does the parsing.
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <cstdio>

namespace {

QString slugOf(const QString& heading)
{
    QString slug = heading.toLower();
    slug.replace(QRegularExpression(QStringLiteral("[^a-z0-9]+")), QStringLiteral("-"));
    return slug.remove(QRegularExpression(QStringLiteral("^-+|-+$")));
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc == 5 && QByteArray(argv[1]) == "--picture") {
        const QImage shot(QString::fromLocal8Bit(argv[2]));
        const int width = QByteArray(argv[4]).toInt();
        if (shot.isNull() || width < 16) {
            std::fprintf(stderr, "cannot read %s\n", argv[2]);
            return 1;
        }
        const QImage scaled = shot.width() > width ? shot.scaledToWidth(width, Qt::SmoothTransformation) : shot;
        return scaled.convertToFormat(QImage::Format_RGB888).save(QString::fromLocal8Bit(argv[3]), "JPEG", 86) ? 0 : 1;
    }
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <guide.md> <guide.html>\n", argv[0]);
        return 2;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    QString markdown = QString::fromUtf8(in.readAll());

    // Take the anchors off the heading lines, in order.
    const QRegularExpression headingLine(QStringLiteral("^(#{1,6} .*?)(?:\\s*\\{#([A-Za-z0-9_-]+)\\})?\\s*$"),
                                         QRegularExpression::MultilineOption);
    QStringList anchors;
    QString cleaned;
    bool inCode = false;
    for (const QString& line : markdown.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("```")))
            inCode = !inCode;
        const QRegularExpressionMatch m = headingLine.match(line);
        if (!inCode && m.hasMatch()) {
            const QString text = m.captured(1);
            anchors << (m.captured(2).isEmpty() ? slugOf(text.section(QLatin1Char(' '), 1)) : m.captured(2));
            cleaned += text + QLatin1Char('\n');
        } else {
            cleaned += line + QLatin1Char('\n');
        }
    }

    QTextDocument doc;
    doc.setMarkdown(cleaned, QTextDocument::MarkdownDialectGitHub);
    int next = 0;
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() <= 0 || next >= anchors.size())
            continue;
        QTextCursor cursor(block);
        cursor.select(QTextCursor::BlockUnderCursor);
        QTextCharFormat anchor;
        anchor.setAnchor(true);
        anchor.setAnchorNames({anchors[next++]});
        cursor.mergeCharFormat(anchor);
    }
    if (next != anchors.size()) {
        std::fprintf(stderr, "%s: %d headings found, %d expected\n", argv[1], next, int(anchors.size()));
        return 1;
    }

    QString html = doc.toHtml(QByteArrayLiteral("utf-8"));
    // A browser gets a readable column; the program's own viewer ignores what it doesn't know.
    html.replace(QLatin1String("</head>"),
                 QStringLiteral("<title>Vantrel Photo user guide</title>\n"
                                "<style>body { max-width: 52em; margin: 2em auto; padding: 0 1em; line-height: 1.45; }"
                                " img { max-width: 100%; } table { border-collapse: collapse; }"
                                " td, th { padding: 3px 8px; }</style>\n</head>"));
    QFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(html.toUtf8()) < 0) {
        std::fprintf(stderr, "cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
