#include "Drop/Linux/DragSource.h"

#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QRasterWindow>
#include <QUrl>

#include <cstdio>

namespace tarvik::test::DragSource {

namespace {

void say(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

class SourceWindow : public QRasterWindow {
public:
    explicit SourceWindow(QStringList what) : m_what(std::move(what)) {
        setFlags(Qt::FramelessWindowHint);
        setGeometry(0, 0, 2 * place, 2 * place);
    }

protected:
    void exposeEvent(QExposeEvent* event) override {
        QRasterWindow::exposeEvent(event);
        if (isExposed()) say("ready");
    }
    void mousePressEvent(QMouseEvent*) override {
        auto* drag = new QDrag(this);
        drag->setMimeData(dragged());
        const Qt::DropAction end = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
        say(end == Qt::CopyAction   ? "copy"
            : end == Qt::MoveAction ? "move"
            : end == Qt::LinkAction ? "link"
                                    : "nothing");
    }

private:
    QMimeData* dragged() const {
        auto* data = new QMimeData;
        if (m_what.value(0) == QLatin1String("text")) {
            data->setText(m_what.value(1));
            return data;
        }
        QList<QUrl> urls;
        for (const QString& url : m_what.mid(1)) urls.push_back(QUrl(url));
        data->setUrls(urls);
        return data;
    }

    QStringList m_what;
};

}  // namespace

int run(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    SourceWindow window(QGuiApplication::arguments().mid(2));
    window.show();
    return QGuiApplication::exec();
}

}  // namespace tarvik::test::DragSource
