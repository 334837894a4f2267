#ifndef TESTS_KEYWORD_H
#define TESTS_KEYWORD_H

#include <QtCore/QObject>

class Keyword : public QObject
{
    Q_OBJECT

public slots:
    void answer();
};

#endif
