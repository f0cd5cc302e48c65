#include "ui/main_frame.h"

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

namespace ui {

namespace {

QPointer<QMainWindow> g_frame;

} // namespace

QMainWindow* mainFrame()
{
    return g_frame;
}

void setMainFrame(QMainWindow* frame)
{
    g_frame = frame;
}

QWidget* dialogParent()
{
    QWidget* running = QApplication::activeModalWidget();
    return running ? running : g_frame.data();
}

} // namespace ui
