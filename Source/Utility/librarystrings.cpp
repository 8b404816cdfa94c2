#include "Utility/librarystrings.h"

#include <algorithm>
#include <iterator>

namespace ovw::utility {

namespace {

constexpr LibraryString cnStrings[] = {
    {1, "Non-full color image cannot be opened!", "フルカラー画像以外は開くことができません！"},
    {2, "VEXA format tag does not exist!", "指定のタグが存在しません！"},
    {3, "Wrong Color Chart version number; it cannot be used!",
     "カラーチャートファイルのバージョン番号が異なるため利用できません！"},
    {4, "This is not a Color Chart file!", "このファイルはカラーチャートファイルではありません！"},
    {5, "No tag found in the management file!", "マネジメントファイルに指定のタグが存在しません！"},
    {6, "Incorrect parameter!", "パラメータが不正です！"},
    {7, "Failed to obtain time!", "時間の取得に失敗しました！"},
    {8, "That file already exists!", "このファイルは既に存在しています！"},
    {9, "Wrong file format!", "ファイルの形式が異なります！"},
    {10, "Wrong file version number; it cannot be used!", "ファイルのバージョン番号が異なるため利用できません！"},
    {11, "Plugin not found!", "プラグインが見つかりませんでした！"},
    {12, "Layer not found!", "指定のレイヤーが見つかりませんでした！"},
    {13, "File format not supported!", "指定のファイル形式はサポートされていません"},
    {14, "This format does not support that size!", "指定のサイズはこのフォーマットではサポートされていません！"},
    {15, "DDR not connected!", "DDRが接続されていません！"},
    {16, "Vectorization error occurred!", "ラスター・ベクター変換でエラーが発生しました！"},
    {17, "Too many colors; vectorization failed!", "色数が多すぎるのでベクターデータに変換できませんでした！"},
    {18, "Error occurred during vector data processing!\nThe vector data may be corrupted.",
     "ベクターデータの操作中にエラーが発生しました！\nベクターデータが壊れた可能性があります。"},
    {80, "Error occurred during vector data processing!", "ベクターデータの操作中にエラーが発生しました！"},
    {100, "%s has changed. Save the changes?", "%s は更新されています。保存しますか？"},
    {101, "%s is read-only.\nClose the file?",
     "%s は読み取り専用属性が指定されています！\nドキュメントを閉じてもよろしいですか？"},
    {102, "%s is read-only.", "%s は読み取り専用属性が指定されています！"},
    {200, "Don't show again", "再表示しない"},
};

} // namespace

const LibraryString* findLibraryString(std::uint32_t id) {
    const auto* const found = std::ranges::find(cnStrings, id, &LibraryString::id);
    return found == std::ranges::end(cnStrings) ? nullptr : found;
}

} // namespace ovw::utility
