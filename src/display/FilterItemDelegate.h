#pragma once

#include <QStyledItemDelegate>

// Draws a type filter item as its label only. The whole item text carries
// the code and pattern list after a run of blanks; the box keeps it as the
// item's data and shows (and gives screen readers) the label alone.
class FilterItemDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static QString visibleLabel(const QString &itemText);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
