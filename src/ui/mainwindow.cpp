#include "ui/mainwindow.h"

#include "base/sessionlog.h"
#include "base/version.h"

#include <QPushButton>
#include <QTimer>

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_sendToDrafteon(new QPushButton(tr("Send to Drafteon"), this))
{
    setWindowTitle(QString::fromLatin1(productName));
    setCentralWidget(new QWidget(this));
    setMenuWidget(m_sendToDrafteon);
    m_sendToDrafteon->hide();
    resize(1280, 800);
}

bool MainWindow::openFile(const QString &path, int)
{
    logWarning() << "Unknown file type" << path << "\n";
    logFlush();
    return false;
}

void MainWindow::setImportFile(const QString &path)
{
    m_importFile = path;
    QTimer::singleShot(1, this, &MainWindow::loadImportFile);
}

void MainWindow::setIntegrationString(const QString &text)
{
    m_integrationString = text;
}

void MainWindow::setSecondIntegrationString(const QString &text)
{
    m_secondIntegrationString = text;
}

void MainWindow::setExportPath(const QString &path)
{
    m_exportPath = path;
    m_sendToDrafteon->show();
}

void MainWindow::loadImportFile()
{
    openFile(m_importFile, 0);
}
