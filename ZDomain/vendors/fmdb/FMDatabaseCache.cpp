#include <algorithm>
#include <utility>

#include "ZDomain/vendors/fmdb/FMDatabase.h"

void FMDatabase::setShouldCacheStatements(bool caches) {
  shouldCacheStatements_ = caches;
  if (!caches) {
    setCachedStatements(std::nullopt);
  } else if (!cachedStatements_) {
    cachedStatements_.emplace();
  }
}

void FMDatabase::setCachedStatements(std::optional<StatementCache> statements) {
  lastCached_ = nullptr;
  cachedStatements_ = std::move(statements);
}

std::shared_ptr<FMStatement> FMDatabase::cachedStatementForQuery(NullableText query) const {
  const auto* const statement = findCachedStatement(query.view());
  return statement ? *statement : nullptr;
}

const std::shared_ptr<FMStatement>* FMDatabase::findCachedStatement(std::string_view query) const {
  if (!cachedStatements_) return nullptr;
  if (!lastCached_ || lastCached_->first != query) {
    const auto found = cachedStatements_->find(query);
    if (found == cachedStatements_->end()) return nullptr;
    lastCached_ = &*found;
  }
  for (const auto& statement : lastCached_->second) {
    if (!statement->inUse()) return &statement;
  }
  return nullptr;
}

void FMDatabase::setCachedStatement(std::shared_ptr<FMStatement> statement, NullableText query) {
  statement->setQuery(query.string());
  if (!cachedStatements_) return;
  StatementSet& statements = (*cachedStatements_)[query.string()];
  if (std::find(statements.begin(), statements.end(), statement) == statements.end()) {
    statements.push_back(std::move(statement));
  }
}

void FMDatabase::clearCachedStatements() {
  if (!cachedStatements_) return;
  for (const auto& [query, statements] : *cachedStatements_) {
    for (const auto& statement : statements) statement->close();
  }
  setCachedStatements(StatementCache());
}

// Finalizes a statement that cannot be used again, and takes it out of the cache.
void FMDatabase::discard(FMStatement& statement, NullableText sql) {
  statement.close();
  if (!cachedStatements_) return;
  const auto found = cachedStatements_->find(sql.view());
  if (found == cachedStatements_->end()) return;
  std::erase_if(found->second, [&](const auto& cached) { return cached.get() == &statement; });
  if (!found->second.empty()) return;
  lastCached_ = nullptr;
  cachedStatements_->erase(found);
}
