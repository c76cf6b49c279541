#import "appkit/Table.h"

#import "appkit/VXConfiguratorCell.h"

namespace quorel::appkit {

namespace {

NSArray *nsStrings(const std::vector<std::string> &strings) {
    NSMutableArray *array = [NSMutableArray array];
    for (const auto &string : strings) [array addObject:nsString(string)];
    return array;
}

}  // namespace

void ButtonCell::setButtonType(ButtonType type) {
    [static_cast<NSButtonCell *>(nativeCell()) setButtonType:static_cast<NSButtonType>(type)];
}

void ButtonCell::setControlSize(ControlSize size) {
    [nativeCell() setControlSize:static_cast<NSControlSize>(size)];
}

void ButtonCell::setImagePosition(ImagePosition position) {
    [static_cast<NSButtonCell *>(nativeCell()) setImagePosition:static_cast<NSCellImagePosition>(position)];
}

std::shared_ptr<quorel::ButtonCell> Cells::makeButtonCell(std::string_view title) {
    NSButtonCell *cell = [[[NSButtonCell alloc] initTextCell:nsString(title)] autorelease];
    return std::make_shared<ButtonCell>(cell);
}

std::shared_ptr<Cell> Cells::makeConfiguratorCell(std::string_view title) {
    VXConfiguratorCell *cell = [[[VXConfiguratorCell alloc] initTextCell:nsString(title)] autorelease];
    return std::make_shared<BasicCell<Cell>>(cell);
}

void TableColumn::setDataCell(std::shared_ptr<Cell> cell) {
    if (auto *native = dynamic_cast<NativeCell *>(cell.get())) [_column.get() setDataCell:native->nativeCell()];
    [[_column.get() tableView] setNeedsDisplay:YES];  // rows are drawn when they change, not when their cell does
}

void Pasteboard::declareTypesOwner(const std::vector<std::string> &types, const Object *) {
    // All data follows at once, so nobody need be asked for it later.
    [_pasteboard.get() declareTypes:nsStrings(types) owner:nil];
}

void Pasteboard::setDataForType(std::string_view data, std::string_view type) {
    [_pasteboard.get() setData:[NSData dataWithBytes:data.data() length:data.size()] forType:nsString(type)];
}

TableView::~TableView() {
    [native() setDelegate:nil];
    [native() setDataSource:nil];
    [native() setTarget:nil];
    [_doubleAction release];
    [_bridge release];
}

void TableView::setDoubleAction(std::function<void()> action) {
    [_doubleAction release];
    NSTableView *table = native();
    // Two quick clicks on a header are a double action too, but on no row; on a check box they are two clicks.
    _doubleAction = [[VXActionTarget alloc] initWithAction:[table, action = std::move(action)] {
        const NSInteger column = [table clickedColumn];
        if ([table clickedRow] < 0 || column < 0) return;
        id cell = [[[table tableColumns] objectAtIndex:static_cast<NSUInteger>(column)] dataCell];
        if (![cell isKindOfClass:[NSButtonCell class]]) action();
    }];
    [native() setTarget:_doubleAction];
    [native() setDoubleAction:@selector(perform:)];
}

void TableView::setRowHeight(double points) {
    [native() setRowHeight:points];
    [[native() enclosingScrollView] setVerticalLineScroll:points];  // what a wheel's notch goes
}

void TableView::registerForDraggedTypes(const std::vector<std::string> &types) {
    [native() registerForDraggedTypes:nsStrings(types)];
}

std::shared_ptr<quorel::TableColumn> TableView::tableColumnWithIdentifier(std::string_view identifier) {
    return wrapped<TableColumn>([native() tableColumnWithIdentifier:nsString(identifier)]);
}

}  // namespace quorel::appkit
