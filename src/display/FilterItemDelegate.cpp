#include "display/FilterItemDelegate.h"

QString FilterItemDelegate::visibleLabel(const QString &itemText)
{
    const qsizetype blanks = itemText.indexOf(QStringLiteral("   "));
    return blanks < 0 ? itemText : itemText.left(blanks);
}

void FilterItemDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->text = visibleLabel(option->text);
}
