#pragma once

#include <QDialog>

/// Name, version and what the program is built with.
class AboutBox : public QDialog
{
    Q_OBJECT

public:
    explicit AboutBox(QWidget *parent = nullptr);
};
